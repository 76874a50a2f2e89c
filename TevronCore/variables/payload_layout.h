#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "variables/var_info.h"

/// Places the variables of one table in the replies and write payloads of their commands, one
/// behind the other in the order in which they are passed. Used while a table is loaded.
class PayloadLayout {
 public:
  /// A payload longer than this is a slip of the table, whatever its rows say.
  static constexpr int64_t kMaxLength = int64_t{16} * 1024 * 1024;

  /// Takes the reply and the payload that the variable would belong to out of use: it has no known
  /// length, so the places of its neighbours are unknown. Reading them would show, and writing them
  /// would store, other variables' bytes. To be called before anything is placed.
  void TakeOutOfUse(const VarInfo& var);

  /// Fills get_start_pos. False when the reply is out of use or too long. The variable has a
  /// get_cmd.
  bool PlaceInReply(VarInfo* var);

  /// Fills set_start_pos, likewise. *ascends tells whether the "SetIndex" is above the one before.
  bool PlaceInPayload(std::optional<int32_t> set_index, VarInfo* var, bool* ascends);

 private:
  struct Payload {
    std::string command;
    std::string read_payload;
    int64_t length = 0;  // so far
    std::optional<int32_t> last_set_index;
    bool unusable = false;
  };
  using Payloads = std::unordered_map<std::string, Payload>;

  static bool TakeRoom(Payload* payload, int32_t length, int32_t* position);

  Payloads replies_;
  Payloads writes_;
  // Those of the variable placed last: rows of one command mostly stand together.
  Payload* reply_ = nullptr;
  Payload* write_ = nullptr;
};
