#include "lidar_settings.h"

#include "failure.h"

SettingsLidar SettingsOf(Context& context, LidarLink& link) {
  LidarSession& session = link.session();
  return {link.sender(), *link.model(), session.state(), session.read_failures(), context.report};
}

WorkWatch WatchOf(Context& context, const std::string& what) {
  return {[&context] { return context.interrupt.raised(); },
          [&context, what](size_t done, size_t all) { context.report.Progress(what, done, all); }};
}

SettingsFile LoadFile(const std::string& path) {
  std::string error;
  std::optional<SettingsFile> file = LoadSettings(QString::fromStdString(path), &error);
  if (!file) {
    throw Failure(ExitCode::kUsage, error);
  }
  return *std::move(file);
}

SettingsFile ReadWhole(Context& context, LidarLink& link) {
  SettingsReading reading = ReadSettings(SettingsOf(context, link), WatchOf(context, "Reading"));
  context.report.EndProgress();
  context.interrupt.ThrowIfRaised();
  if (!reading.ended.empty()) {
    throw Failure(reading.lost ? ExitCode::kBrokenOff : ExitCode::kNo,
                  "the settings were not read to their end: " + reading.ended);
  }
  return std::move(reading.file);
}

SettingsFile ReadFromLidar(Context& context, const std::string& command,
                           std::shared_ptr<const ConfigParser>* table) {
  LidarLink link(context);
  link.NeedPages(command);
  link.Connect();
  *table = link.model()->table;
  return ReadWhole(context, link);
}

void KeepSnapshot(Context& context, LidarLink& link, SnapshotReason reason) {
  if (link.model()->connect_type == kNetworkLink) {
    KeepSnapshot(context, ReadWhole(context, link), reason);
  }
}

void KeepSnapshot(Context& context, const SettingsFile& present, SnapshotReason reason) {
  const std::string problem = Snapshots().Keep(present, reason);
  if (!problem.empty()) {
    context.report.LogLine(problem, LogType::kWarning);
  }
}
