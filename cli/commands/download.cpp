// What a lidar hands out whole.

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <algorithm>
#include <optional>

#include "commands/commands.h"
#include "downloads/calibration_download.h"
#include "downloads/log_download.h"
#include "downloads/operation_log_download.h"
#include "lidar_link.h"
#include "names.h"
#include "session/posted_report.h"
#include "variables/log_variables.h"

namespace {

QString FolderOf(const Arguments& arguments) {
  const QFileInfo folder(QString::fromStdString(arguments.path));
  if (!folder.isDir()) {
    throw Failure(ExitCode::kUsage, "there is no folder " + arguments.path);
  }
  return folder.absoluteFilePath();
}

std::vector<std::string> DownloadsOf(const ConfigParser& table) {
  std::vector<std::string> names;
  for (const VarInfo* var : OfferedLogs(table)) {
    names.push_back(var->var_name);
  }
  const bool has_config = table.FindByName(kConfigFile) != nullptr;
  if (has_config && std::find(names.begin(), names.end(), kConfigFile) == names.end()) {
    names.emplace_back(kConfigFile);
  }
  return names;
}

ExitCode Show(Context& context, const std::vector<QString>& files) {
  QJsonArray list;
  for (const QString& file : files) {
    context.output.Line(file.toStdString());
    list.append(file);
  }
  context.output.Object({{"files", list}});
  return ExitCode::kDone;
}

/// How a download failed that said why: was the link lost?
Failure DownloadFailed(Context& context, LidarLink& link) {
  context.interrupt.ThrowIfRaised();
  const bool is_there = link.session().CheckLink();
  return {is_there ? ExitCode::kNo : ExitCode::kBrokenOff,
          context.report.TakeError("the download failed")};
}

}  // namespace

ExitCode RunDownload(Context& context) {
  const QString folder = FolderOf(context.arguments);
  LidarLink link(context);
  const std::vector<std::string> names = DownloadsOf(*link.model()->table);
  if (names.empty()) {
    throw Failure(ExitCode::kUsage, "the table of " + link.model()->name + " offers no download");
  }
  const std::string& name = names[MatchName(names, context.arguments.name, "download")];
  link.Connect();
  const LidarLink::Interruptible interruptible(link);
  LinkState& state = link.session().state();
  LogDownload download({&link.sender(), state, *link.model()->table, context.report,
                        [&state](bool running) { state.downloading = running; }});
  if (download.Run(QUrl::fromLocalFile(folder), QString::fromStdString(name)) != 0) {
    throw DownloadFailed(context, link);
  }
  return Show(context, {download.file()});
}

ExitCode RunLog(Context& context) {
  const QString folder = FolderOf(context.arguments);
  LidarLink link(context);
  WireCommand request;
  try {
    request = DownloadRequestOf(*link.model()->table, kOperationLog, kOperationLog);
  } catch (const std::invalid_argument&) {
    throw Failure(ExitCode::kUsage,
                  "the table of " + link.model()->name + " offers no operation log");
  }
  link.Connect();
  const LidarLink::Interruptible interruptible(link);
  std::optional<OperationLogOutcome> outcome;
  const auto report =
      std::make_shared<PostedReport>(link.MakePost(), context.report, [] { return true; });
  OperationLogDownload download({link.session().sender(), request, folder}, report,
                                [&outcome, post = link.MakePost()](OperationLogOutcome how) {
                                  post([&outcome, how] { outcome = how; });
                                });
  link.Wait([&] { return outcome.has_value(); },
            [&] {
              const DownloadSnapshot now = download.Now();
              context.report.Progress(
                  "Part " + std::to_string(now.part) + " of " + std::to_string(now.part_count),
                  now.received, now.announced);
            });
  if (outcome != OperationLogOutcome::kSuccessful) {
    QJsonArray files;
    for (const QString& file : download.files()) {
      context.output.Line(file.toStdString());
      files.append(file);
    }
    throw DownloadFailed(context, link).With({{"files", files}});
  }
  return Show(context, download.files());
}

ExitCode RunCalibration(Context& context) {
  LidarLink link(context);
  if (link.model()->family != SerialFamily::kLumo) {
    throw Failure(ExitCode::kUsage, link.model()->name + " hands out no calibration");
  }
  link.Connect();
  const LidarLink::Interruptible interruptible(link);
  const QString path = QFileInfo(QString::fromStdString(context.arguments.path)).absoluteFilePath();
  QString saved;
  const int32_t reason =
      DownloadCalibration(&link.sender(), link.session().state(), path, context.report, &saved);
  context.interrupt.ThrowIfRaised();
  if (reason != 0) {
    throw Failure(FailureOf(reason).code(), context.report.TakeError("no calibration was saved"),
                  FailureOf(reason).lidar_code());
  }
  return Show(context, {saved});
}
