#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct VarInfo;

/// The variables that lie one behind the other in one payload: those that one command writes, or
/// those that one request reads. What goes over the wire decides which rows belong together: "0x22"
/// and "34" are one command, and the variables read with it and the same payload are in one reply.
struct FieldGroup {
  /// The command text of its first row, and of a read the text of its payload behind it.
  std::string name;
  std::vector<uint8_t> fixed_payload;  ///< "GetCmdPayload" or "SetCmdPayload" of its first row.
  std::vector<const VarInfo*> fields;  ///< In table order.
  int64_t length = 0;  ///< Bytes of the payload behind its head, those of rows left out included.

  /// Why the command must not be sent although its variables are known; mostly empty.
  std::string obstacle;
};
