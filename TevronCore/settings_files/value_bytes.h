#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "settings_files/settings_file.h"
#include "variables/input_problem.h"
#include "variables/var_info.h"

// What the texts and bytes of settings files mean for the variables of a table.

/// Whether it is the field-of-view table, whose text here is its ten angles: "0, 360, 0, 360, ...".
bool IsFovTable(const VarInfo& var);

/// Whether a settings file may change it: as CanBeChanged has it, and the field-of-view table,
/// which is no row that a user changes and has fields of its own.
bool CanBeApplied(const VarInfo& var);

/// The bytes as the screens show them, as UTF-8 whatever the lidar sent; nothing for a type without
/// a text, and for bytes that do not fit theirs.
std::optional<std::string> TextOfBytes(const VarInfo& var, const std::vector<uint8_t>& bytes);

/// What would be written for a saved value.
struct WantedValue {
  std::vector<uint8_t> bytes;  ///< as long as its place; empty when the problem is kImpossible
  std::string text;
  InputProblem problem;
};

/// Bytes that say what the text says are taken as they are, so that nothing is rounded on the way.
/// Where they do not, or do not fit the place, somebody has written another text: that counts, read
/// as a field of the screens reads it, and of a choice the label as well. `held` is what the lidar
/// holds, of which the mode of a field-of-view table is kept when only its angles are said; may be
/// empty. `range_counts` is false while the variable's switch is off. `value` has text or bytes.
WantedValue WantedOf(const VarInfo& var, const SavedValue& value, const std::vector<uint8_t>& held,
                     bool range_counts);
