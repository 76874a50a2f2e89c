#pragma once

#include <string>
#include <vector>

#include "settings_files/settings_file.h"
#include "variables/config_parser.h"

/// How one variable stands in two files.
enum class DiffKind {
  kEqual,
  kDiffers,
  kOnlyLeft,   ///< the right one has no such variable
  kOnlyRight,  ///< the left one has none
  kUnread,     ///< both have it, and in one of them at least it is unread
};

/// "equal", "differs", "only left", "only right" or "unread".
const char* TextOf(DiffKind kind);

/// A variable of two files, for a row of a table.
struct DiffRow {
  std::string name;
  std::string page;
  std::string unit;
  std::string left;  ///< text, else bytes in hexadecimal; "" where there is none or it is unread
  std::string right;
  DiffKind kind = DiffKind::kEqual;
  bool writable = false;  ///< in either; readings of a lidar that works always differ
};

struct SettingsDiff {
  /// In the order of the left file, then what only the right one has, in its order.
  std::vector<DiffRow> rows;
  /// Every row that a user may change is kEqual.
  bool equal = true;

  size_t Count(DiffKind kind, bool writable) const;
};

/// Compares by name. Two values are equal when bytes and texts are; where bytes are missing or
/// their lengths differ, the texts alone decide. With the `table` of the model (may be null) a text
/// that was edited by hand counts as the bytes that would be written for it, in the place of those
/// beside it.
SettingsDiff CompareSettings(const SettingsFile& left, const SettingsFile& right,
                             const ConfigParser* table);
