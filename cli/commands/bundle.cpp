#include <QFileInfo>
#include <QJsonArray>

#include "commands/commands.h"
#include "lidar_settings.h"
#include "support_bundle/support_bundle.h"

namespace {

/// A lidar that cannot be read is a reason to ask for help, and none to go without the rest.
void TakeSettings(Context& context, BundleSources* sources) {
  const Arguments& arguments = context.arguments;
  if (arguments.model.empty() && arguments.host.empty() && arguments.serial.empty()) {
    sources->no_settings = "no lidar was named";
    return;
  }
  LidarLink link(context);
  try {
    link.NeedPages("bundle");
    link.Connect();
    sources->settings = ReadWhole(context, link);
  } catch (const Failure& failure) {
    if (failure.code() == ExitCode::kInterrupted) {
      throw;
    }
    sources->no_settings = failure.what();
    sources->last_fault = failure.code() == ExitCode::kUsage ? "" : failure.what();
    context.report.LogLine(std::string("the settings are left out: ") + failure.what(),
                           LogType::kWarning);
  }
}

std::string LineOf(const BundleEntry& entry) {
  return entry.name + ": " + entry.what + ", " +
         (entry.left_out.empty() ? std::to_string(entry.size()) + " bytes"
                                 : "left out: " + entry.left_out);
}

QJsonObject ObjectOf(const BundleEntry& entry) {
  return {{"name", QString::fromStdString(entry.name)},
          {"what", QString::fromStdString(entry.what)},
          {"size", static_cast<qint64>(entry.size())},
          {"left_out", TextOrNull(entry.left_out)}};
}

}  // namespace

ExitCode RunBundle(Context& context) {
  const Arguments& arguments = context.arguments;
  BundleSources sources{context.config, std::nullopt, ""};
  TakeSettings(context, &sources);
  const std::vector<BundleEntry> entries = ListBundle(sources);
  QJsonArray objects;
  for (const BundleEntry& entry : entries) {
    objects.append(ObjectOf(entry));
    if (arguments.dry_run) {
      context.output.Line(LineOf(entry));
    } else {
      context.report.Note(LineOf(entry));
    }
  }
  const QString path = QString::fromStdString(arguments.path);
  if (!arguments.dry_run) {
    if (const std::string problem = WriteBundle(path, entries); !problem.empty()) {
      throw Failure(ExitCode::kUsage, problem);
    }
    context.output.Line("the bundle was saved as " + arguments.path);
  }
  context.output.Object({{"file", QFileInfo(path).absoluteFilePath()},
                         {"entries", objects},
                         {"dry_run", arguments.dry_run}});
  return ExitCode::kDone;
}
