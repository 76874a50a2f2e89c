#include <QFileInfo>
#include <algorithm>

#include "commands/commands.h"
#include "lidar_settings.h"

ExitCode RunSave(Context& context) {
  LidarLink link(context);
  link.NeedPages("save");
  link.Connect();
  const SettingsFile file = ReadWhole(context, link);
  const std::string& path = context.arguments.path;
  const auto unread = std::count_if(file.values.begin(), file.values.end(),
                                    [](const SavedValue& value) { return !value.was_read(); });
  if (path == "-") {
    context.output.Bytes(SettingsJson(file));
  } else if (const std::string problem = SaveSettings(QString::fromStdString(path), file);
             !problem.empty()) {
    throw Failure(ExitCode::kUsage, problem);
  }
  const QJsonObject result{{"file", QFileInfo(QString::fromStdString(path)).absoluteFilePath()},
                           {"values", static_cast<int>(file.values.size())},
                           {"unread", static_cast<int>(unread)}};
  if (unread != 0) {
    Failure failure(ExitCode::kNo, std::to_string(unread) + " of " +
                                       std::to_string(file.values.size()) +
                                       " values could not be read; the file lists them as unread");
    throw path == "-" ? failure : std::move(failure).With(result);
  }
  if (path != "-") {
    context.output.Line(std::to_string(file.values.size()) + " values saved as " + path);
    context.output.Object(result);
  }
  return ExitCode::kDone;
}
