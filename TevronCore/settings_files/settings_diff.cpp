#include "settings_files/settings_diff.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "CmxClient/hex_text.h"
#include "settings_files/value_bytes.h"

namespace {

using Index = std::unordered_map<std::string, const SavedValue*>;

/// The value as it would be written, where that can be said.
SavedValue Meant(const SavedValue& value, const ConfigParser* table) {
  const VarInfo* const var = table == nullptr ? nullptr : table->FindByName(value.name);
  if (var == nullptr || !value.text || !CanBeApplied(*var)) {
    return value;
  }
  SavedValue meant = value;
  const WantedValue wanted = WantedOf(*var, value, {}, false);
  if (wanted.bytes.empty()) {
    meant.bytes.reset();
  } else {
    meant.bytes = wanted.bytes;
    meant.text = wanted.text;
  }
  return meant;
}

bool AreEqual(const SavedValue& left, const SavedValue& right) {
  if (left.bytes && right.bytes && left.bytes->size() == right.bytes->size()) {
    const bool both_have_texts = left.text && right.text;
    return left.bytes == right.bytes && (!both_have_texts || left.text == right.text);
  }
  return left.text && left.text == right.text;
}

std::string Shown(const SavedValue& value) {
  return value.bytes ? value.text.value_or(kavel::lidar::HexText(*value.bytes))
                     : value.text.value_or("");
}

DiffRow RowOf(const SavedValue& one, DiffKind kind) {
  DiffRow row{one.name, one.page, one.unit, "", "", kind, one.writable};
  (kind == DiffKind::kOnlyRight ? row.right : row.left) = Shown(one);
  return row;
}

DiffRow RowOf(const SavedValue& left, const SavedValue& right, const ConfigParser* table) {
  DiffRow row = RowOf(left, DiffKind::kUnread);
  row.right = Shown(right);
  row.writable = left.writable || right.writable;
  if (left.was_read() && right.was_read()) {
    row.kind =
        AreEqual(Meant(left, table), Meant(right, table)) ? DiffKind::kEqual : DiffKind::kDiffers;
  }
  return row;
}

Index IndexOf(const SettingsFile& file) {
  Index index;
  for (const SavedValue& value : file.values) {
    index.emplace(value.name, &value);
  }
  return index;
}

}  // namespace

const char* TextOf(DiffKind kind) {
  switch (kind) {
    case DiffKind::kEqual:
      return "equal";
    case DiffKind::kDiffers:
      return "differs";
    case DiffKind::kOnlyLeft:
      return "only left";
    case DiffKind::kOnlyRight:
      return "only right";
    case DiffKind::kUnread:
      return "unread";
  }
  return "";
}

size_t SettingsDiff::Count(DiffKind kind, bool writable) const {
  return static_cast<size_t>(std::count_if(rows.begin(), rows.end(), [&](const DiffRow& row) {
    return row.kind == kind && row.writable == writable;
  }));
}

SettingsDiff CompareSettings(const SettingsFile& left, const SettingsFile& right,
                             const ConfigParser* table) {
  const Index in_left = IndexOf(left);
  const Index in_right = IndexOf(right);
  SettingsDiff diff;
  for (const SavedValue& value : left.values) {
    const auto found = in_right.find(value.name);
    diff.rows.push_back(found == in_right.end() ? RowOf(value, DiffKind::kOnlyLeft)
                                                : RowOf(value, *found->second, table));
  }
  for (const SavedValue& value : right.values) {
    if (in_left.count(value.name) == 0) {
      diff.rows.push_back(RowOf(value, DiffKind::kOnlyRight));
    }
  }
  diff.equal = std::all_of(diff.rows.begin(), diff.rows.end(), [](const DiffRow& row) {
    return !row.writable || row.kind == DiffKind::kEqual;
  });
  return diff;
}
