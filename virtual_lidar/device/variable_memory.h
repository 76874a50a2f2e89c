#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "device/measurement.h"
#include "variables/config_parser.h"

/// The bytes that the device holds for every variable of its table, and which commands read and
/// write them. The table must outlive this object.
class VariableMemory {
 public:
  using Bytes = std::vector<uint8_t>;

  /// One variable and what the device holds for it.
  struct Cell {
    const VarInfo* var = nullptr;
    Bytes value;
    Bytes factory;          ///< value after a reset
    Bytes start;            ///< of a measured value: what it moves around; else empty
    bool is_clock = false;  ///< counts seconds on top of its value
  };

  /// How a command fared.
  struct Outcome {
    uint8_t return_code = 0;
    Bytes payload;      ///< of the reply
    size_t fields = 0;  ///< how many variables were read or written
    bool written = false;
    bool measured = false;  ///< values were measured anew for the reply
  };

  /// Every variable starts at its default; one that cannot be encoded leaves zeros behind.
  explicit VariableMemory(const ConfigParser& table);

  /// From now on the numbers on the monitor page are measured anew whenever they are read.
  void Measure(uint32_t seed) { measurement_.emplace(seed); }

  /// Carries a command of the table out; nothing when the table does not know it. A write is
  /// refused as a whole when one of its values is.
  /// `up_time_s` is added to the clock variables.
  std::optional<Outcome> Execute(uint8_t command, const Bytes& payload, uint32_t up_time_s);

  /// Takes over what the reply to a read command without payload holds; ignored when no variable
  /// is read so or the length differs. Clocks keep their own value.
  void StoreReply(uint8_t command, const Bytes& reply);

  /// Sets a variable, by name or id.
  /// Returns false with a sentence in *error when there is none or the text does not fit.
  bool Preset(const std::string& name, const std::string& text, std::string* error);

  /// What the variable holds from now on, and after a reset; nothing when the text does not fit.
  void SetFactory(const VarInfo& var, const std::string& text);

  /// Back to the factory's values.
  void Reset();

  const std::vector<Cell>& cells() const { return cells_; }
  /// What a read of the cell gives now.
  static Bytes ValueNow(const Cell& cell, uint32_t up_time_s);
  /// Text of the variable named so, as a client would show it; nothing when there is none.
  std::optional<std::string> TextOf(const std::string& name) const;

 private:
  struct WriteGroup {
    uint8_t command = 0;
    Bytes head;  ///< fixed bytes in front of the values
    std::vector<size_t> cells;
    size_t size = 0;          ///< of all fields
    bool any_length = false;  ///< the one value is as long as it comes
    bool is_fov_table = false;
  };

  void AddCell(const VarInfo& var);
  void AddToWriteGroup(const VarInfo& var, size_t cell,
                       std::map<const FieldGroup*, size_t>* group_of);
  size_t ReplySize(const std::vector<size_t>& cells) const;
  const WriteGroup* FindWriteGroup(uint8_t command, const Bytes& payload) const;
  Outcome Write(const WriteGroup& group, const Bytes& payload);
  bool IsCheckedNow(const VarInfo& var, const std::map<size_t, Bytes>& incoming) const;

  void MarkMeasured(const ConfigParser& table);

  std::vector<Cell> cells_;
  std::optional<Measurement> measurement_;
  std::map<std::string, size_t> by_id_;
  std::map<std::pair<uint8_t, Bytes>, std::vector<size_t>> reads_;
  std::vector<WriteGroup> writes_;
};
