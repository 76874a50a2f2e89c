#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "variables/config_parser.h"

/// The ten field-of-view angles as the user sees them: the user's edits laid over those that the
/// lidar holds by the table's bytes. GUI thread only.
class FovTable {
 public:
  static constexpr size_t kSize = 10;
  static constexpr double kMaxDegrees = 360.0;
  using Degrees = std::array<float, kSize>;

  /// What is sent: the angles, and the device's mode byte, which is passed through.
  struct Setting {
    Degrees degrees{};
    uint8_t mode = 0;
  };

  enum class EditResult { kStored, kIgnored, kInvalid };

  /// `table` has to outlive the object.
  explicit FovTable(const ConfigParser& table);

  /// The variable that is written by the field-of-view command; null in a table without one.
  const VarInfo* variable() const { return variable_; }

  /// Takes the text typed for angle `index`; the angle that the lidar holds takes the edit back.
  /// kIgnored for an index outside the table and without a variable, kInvalid for a text that is no
  /// number in [0, 360]; nothing is stored then.
  EditResult Edit(int index, const std::string& text);
  void DropEdits();
  /// In place of the edits here.
  void TakeEdits(const FovTable& other) { edits_ = other.edits_; }
  bool HasEdits() const;

  /// The angles with the edits in them; nothing while no table of this connection's lidar is known.
  std::optional<Setting> ToSend() const;

  /// The ten angles as texts, independent of the locale; empty where neither lidar nor user has
  /// said one.
  std::vector<std::string> Texts() const;

 private:
  std::optional<Setting> Held() const;

  const ConfigParser& table_;
  const VarInfo* variable_ = nullptr;
  std::array<std::optional<float>, kSize> edits_;
};

/// The angles as one text, "0, 360, 0, 360, ..."; each as FovTable::Texts has it.
std::string FovTexts(const FovTable::Degrees& degrees);

/// Reads such a text; blanks are ignored. False, with nothing written, unless it has ten numbers in
/// [0, 360].
bool ParseFovTexts(const std::string& text, FovTable::Degrees* degrees);
