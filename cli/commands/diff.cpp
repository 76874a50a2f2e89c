#include <QJsonArray>
#include <algorithm>

#include "commands/commands.h"
#include "session/lidar_model.h"
#include "settings_files/settings_diff.h"
#include "settings_source.h"

namespace {

/// The table of the model that a file names, if there is one here.
std::shared_ptr<const ConfigParser> TableOf(const Context& context, const std::string& model) {
  const std::vector<std::string> models = context.config.Models();
  const bool is_known = std::find(models.begin(), models.end(), model) != models.end();
  return is_known ? LoadLidarModel(context.config, model)->table : nullptr;
}

QJsonObject ObjectOf(const DiffRow& row) {
  const bool has_left = row.kind != DiffKind::kOnlyRight && !row.left.empty();
  const bool has_right = row.kind != DiffKind::kOnlyLeft && !row.right.empty();
  return {{"name", QString::fromStdString(row.name)},
          {"page", QString::fromStdString(row.page)},
          {"unit", QString::fromStdString(row.unit)},
          {"left", has_left ? QJsonValue(QString::fromStdString(row.left)) : QJsonValue()},
          {"right", has_right ? QJsonValue(QString::fromStdString(row.right)) : QJsonValue()},
          {"kind", TextOf(row.kind)}};
}

std::string LineOf(const DiffRow& row) {
  const std::string unit = row.unit.empty() ? "" : ' ' + row.unit;
  const auto side = [&unit](const std::string& text) { return text.empty() ? "-" : text + unit; };
  const std::string note =
      row.kind == DiffKind::kDiffers ? "" : std::string(" (") + TextOf(row.kind) + ')';
  return row.name + ": " + side(row.left) + " | " + side(row.right) + note;
}

}  // namespace

ExitCode RunDiff(Context& context) {
  const Arguments& arguments = context.arguments;
  const SettingsFile left = LoadFile(arguments.path);
  std::shared_ptr<const ConfigParser> table = TableOf(context, left.model);
  const SettingsFile right = arguments.other_path.empty() ? ReadFromLidar(context, "diff", &table)
                                                          : LoadFile(arguments.other_path);
  if (left.model != right.model) {
    context.report.LogLine(
        "these are settings of two models, " + left.model + " and " + right.model,
        LogType::kWarning);
  }
  const SettingsDiff diff =
      CompareSettings(left, right, left.model == right.model ? table.get() : nullptr);
  QJsonArray differences;
  QJsonArray read_only;
  for (const DiffRow& row : diff.rows) {
    if (row.kind == DiffKind::kEqual) {
      continue;
    }
    (row.writable ? differences : read_only).append(ObjectOf(row));
    if (row.writable) {
      context.output.Line(LineOf(row));
    }
  }
  if (!read_only.isEmpty()) {
    context.report.Note(std::to_string(read_only.size()) +
                        " values that nobody can write differ, too, and do not count.");
  }
  context.output.Object(
      {{"equal", diff.equal}, {"differences", differences}, {"read_only", read_only}});
  return diff.equal ? ExitCode::kDone : ExitCode::kNo;
}
