#include "settings_files/settings_reading.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <algorithm>
#include <utility>

#include "files/whole_file.h"
#include "pages/page_reader.h"
#include "settings_files/value_bytes.h"
#include "variables/csv_reader.h"
#include "variables/log_variables.h"

namespace {

std::string Sha256Of(const std::string& path) {
  QByteArray bytes;
  if (!ReadWholeFile(path, CsvReader::kMaxFileBytes, &bytes).empty()) {
    return "";
  }
  return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
}

/// Each variable with those that the same command reads.
std::vector<ReadGroup> InOrder(const std::vector<const VarInfo*>& vars) {
  std::map<std::string, ReadGroup> by_command = GroupByReadCommand(vars);
  std::vector<ReadGroup> groups;
  for (const VarInfo* var : vars) {
    const auto found = var->read == nullptr ? by_command.end() : by_command.find(var->read->name);
    if (found != by_command.end()) {
      groups.push_back(std::move(found->second));
      by_command.erase(found);
    }
  }
  return groups;
}

/// Why no further command is sent; "" when one may be.
std::string WhyNoMore(const SettingsLidar& lidar, const WorkWatch& watch, bool is_silent,
                      ManyRead* read) {
  std::string obstacle = WhyNotNow(lidar, watch, &read->lost);
  if (obstacle.empty() && is_silent) {
    read->lost = true;
    return "the lidar is silent";
  }
  return obstacle;
}

void TakeValue(const ConfigParser& table, const VarInfo& var, SavedValue* saved) {
  const ConfigParser::Value value = table.ValueOf(var);
  if (!value.has_bytes) {
    saved->unread = "the answer does not fit the type";
    return;
  }
  // The lidar's own: the text of the table may be one that the user is typing.
  saved->text = TextOfBytes(var, value.bytes);
  saved->bytes = value.bytes;
}

/// What stands for a file that the lidar hands out.
bool IsDownload(const VarInfo& var, const std::vector<const VarInfo*>& offered) {
  return var.var_name == kOperationLog || var.var_name == kConfigFile ||
         std::find(offered.begin(), offered.end(), &var) != offered.end();
}

std::string TextIn(const SettingsFile& file, const char* name) {
  const SavedValue* const value = file.Find(name);
  return value != nullptr ? value->text.value_or("") : "";
}

}  // namespace

std::vector<const VarInfo*> SavedVariables(const ConfigParser& table) {
  const std::vector<const VarInfo*> offered = OfferedLogs(table);
  std::vector<const VarInfo*> vars;
  for (const VarInfo* var : table.InTableOrder()) {
    const bool is_saved = table.IsOwn(*var) && !var->get_cmd.empty() && var->offset > 0 &&
                          var->var_name != kSharedSecretKey && !IsDownload(*var, offered);
    // Of two variables with one name the first counts, as everywhere.
    if (is_saved && table.FindByName(var->var_name) == var) {
      vars.push_back(var);
    }
  }
  return vars;
}

SettingsFile BeginSettings(const LidarModel& model) {
  const QDateTime now = QDateTime::currentDateTime();
  SettingsFile file;
  file.program = QCoreApplication::applicationVersion().toStdString();
  file.model = model.name;
  file.time = now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate).toStdString();
  file.table_sha256 = Sha256Of(model.table->path());
  return file;
}

SavedValue DescribeVariable(const VarInfo& var) {
  SavedValue value;
  value.name = var.var_name;
  value.page = var.hidden ? "" : var.function_module.str();
  value.id = var.var_id;
  value.unit = var.unit;
  value.default_text = var.default_val;
  value.writable = CanBeApplied(var);
  return value;
}

ManyRead ReadMany(const SettingsLidar& lidar, const std::vector<const VarInfo*>& vars,
                  const WorkWatch& watch, int patience) {
  PageReader reader(lidar.sender, *lidar.model.table, lidar.state, lidar.failures, lidar.report);
  const std::vector<ReadGroup> groups = InOrder(vars);
  ManyRead read;
  int silences = 0;
  for (size_t i = 0; i < groups.size(); ++i) {
    if (read.ended.empty()) {
      TellProgress(watch, i, groups.size());
      read.ended = WhyNoMore(lidar, watch, silences == patience, &read);
    }
    if (!read.ended.empty()) {
      for (const VarInfo* var : groups[i]) {
        read.failed[var] = read.ended;
      }
      continue;
    }
    const Unread unread = reader.Read(groups[i], "ReadMany");
    read.failed.insert(unread.failed.begin(), unread.failed.end());
    silences = unread.answered ? 0 : silences + 1;
  }
  if (read.ended.empty()) {
    TellProgress(watch, groups.size(), groups.size());
    read.ended = WhyNoMore(lidar, {}, silences == patience, &read);
  }
  return read;
}

SettingsReading ReadSettings(const SettingsLidar& lidar, const WorkWatch& watch) {
  const std::vector<const VarInfo*> vars = SavedVariables(*lidar.model.table);
  SettingsReading reading{BeginSettings(lidar.model), {}, false};
  const ManyRead read = ReadMany(lidar, vars, watch);
  reading.ended = read.ended;
  reading.lost = read.lost;
  for (const VarInfo* var : vars) {
    SavedValue value = DescribeVariable(*var);
    const auto failure = read.failed.find(var);
    if (failure != read.failed.end()) {
      value.unread = failure->second;
    } else {
      TakeValue(*lidar.model.table, *var, &value);
    }
    reading.file.values.push_back(std::move(value));
  }
  reading.file.part_number = TextIn(reading.file, "PN");
  reading.file.serial_number = TextIn(reading.file, "SN");
  reading.file.firmware = TextIn(reading.file, "SWVER_YMD");
  return reading;
}
