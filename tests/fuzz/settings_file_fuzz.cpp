#include "fuzz/fuzz_targets.h"
#include "settings_files/settings_diff.h"
#include "settings_files/settings_file.h"
#include "settings_files/value_bytes.h"
#include "variables/table_rules.h"

namespace {

using Kind = InputProblem::Kind;

SettingsFile Parsed(const QByteArray& json, const char* what) {
  std::string error;
  const std::optional<SettingsFile> file = ParseSettings(json, &error);
  Require(file.has_value() && error.empty(), what);
  return *file;
}

void CheckValue(const VarInfo& var, const SavedValue& value) {
  const auto place = static_cast<size_t>(var.offset);
  const WantedValue wanted = WantedOf(var, value, {}, true);
  Require(wanted.problem.kind == Kind::kImpossible || wanted.bytes.size() == place,
          "what would be written fills its place");
  Require(wanted.problem.kind == Kind::kNone || !wanted.problem.text.empty(),
          "a problem is told in words");
  if (!value.bytes || value.bytes->size() != place) {
    return;
  }
  SavedValue told = value;
  told.text = TextOfBytes(var, *value.bytes);
  Require(WantedOf(var, told, {}, true).bytes == *value.bytes ||
              WantedOf(var, told, {}, true).problem.kind == Kind::kImpossible,
          "what a lidar told is written back as it was");
}

}  // namespace

void FuzzSettingsFile(FuzzInput input) {
  static const ConfigParser table(LoadModelTable(ConfigFolder(TEVRON_SOURCE "/Config"), "Orca"));
  const Bytes json = input.Rest();
  std::string error;
  const auto file = ParseSettings(
      QByteArray(reinterpret_cast<const char*>(json.data()), static_cast<int>(json.size())),
      &error);
  if (!file) {
    Require(!error.empty(), "what is no settings file has its reason");
    return;
  }
  const QByteArray written = SettingsJson(*file);
  const SettingsFile again = Parsed(written, "what was read is written so that it can be read");
  // Qt does not sort keys with zero characters.
  Require(written.contains("\\u0000") || SettingsJson(again) == written,
          "equal settings are equal files");
  for (const ConfigParser* model : {static_cast<const ConfigParser*>(nullptr), &table}) {
    const SettingsDiff diff = CompareSettings(*file, *file, model);
    for (const DiffRow& row : diff.rows) {
      Require(row.kind == DiffKind::kEqual || row.kind == DiffKind::kUnread,
              "settings are equal to themselves");
    }
  }
  for (const SavedValue& value : file->values) {
    const VarInfo* const var = table.FindByName(value.name);
    if (var != nullptr && CanBeApplied(*var) && value.was_read()) {
      CheckValue(*var, value);
    }
  }
}
