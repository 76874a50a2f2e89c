#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "variables/config_parser.h"

/// The set command of the field-of-view table, as the variable tables write it.
inline constexpr char kFovSetCommand[] = "0x22";

/// The ten field-of-view angles as the user sees them: the lidar's, with the user's edits laid over
/// them. GUI thread only.
class FovTable {
 public:
  static constexpr size_t kSize = 10;
  static constexpr double kMaxDegrees = 360.0;
  using Degrees = std::array<float, kSize>;

  enum class EditResult { kStored, kIgnored, kInvalid };

  /// Takes the text typed for angle `index`. kIgnored for an index outside the table, kInvalid for
  /// a text that is no number in [0, 360]; nothing is stored then.
  EditResult Edit(int index, const std::string& text);

  /// Takes the lidar's angles; edited ones keep the user's.
  void StoreReading(const Degrees& degrees);
  /// The same from the field-of-view variable of `table`, when it has been read.
  void StoreReadingOf(const ConfigParser& table);

  /// Back to the last reading.
  void DropEdits();

  /// What the user sees, and what is sent.
  Degrees Shown() const;
  /// The same as ten texts, independent of the locale.
  std::vector<std::string> Texts() const;

 private:
  Degrees reading_{};
  Degrees edits_{};
  std::array<bool, kSize> edited_{};
};
