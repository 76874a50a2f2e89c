#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Every way in which the virtual lidar can misbehave on purpose.
enum class Fault {
  kDrop,
  kDelay,
  kLate,
  kCorrupt,
  kTruncate,
  kSplit,
  kDrip,
  kDripHeader,
  kGarbage,
  kForeign,
  kUnasked,
  kBabble,
  kFlood,
  kWrongCommand,
  kReturnCode,
  kShort,
  kLong,
  kCloseBeforeReply,
  kCloseMidReply,
  kReset,
  kStale,
  kTwice,
  kEcho,
  kHugeLength,
  kSilentAfter,
  kRefusePiece,
  kLosePiece,
  kDamagePiece,
  kCloseAtPiece,
  kDieAtPiece,
  kAuthShortProbe,
  kAuthShortChallenge,
  kAuthZeroChallenge,
  kAuthRefuseResponse,
};

/// One line of the catalogue that the help text, the documentation and the tests go through.
struct FaultMode {
  Fault fault;
  const char* name;      ///< as given to --fault
  const char* argument;  ///< what stands behind "=" ("MS", "N"); empty when there is none
  uint32_t argument_min;
  uint32_t argument_max;
  const char* sentence;  ///< what it does, one sentence
};

/// All fault modes, one for every enumerator, in the order of the enumeration.
const std::vector<FaultMode>& FaultModes();

/// One fault that was asked for: "NAME[=ARG][@CMD][#TIMES]"; TIMES is a number, or "FROM-TO".
struct FaultOrder {
  Fault fault = Fault::kDrop;
  uint32_t argument = 0;
  std::optional<uint8_t> command;  ///< only requests with this command code
  std::optional<uint32_t> times;   ///< only this many times; without it, always
  uint32_t spared = 0;             ///< so many requests go unharmed first
};

/// Reads one --fault argument. CMD is decimal or, with "0x", hexadecimal; TIMES counts from 1.
/// Returns false with a sentence in *error for an unknown name, a missing, superfluous or
///         unsuitable argument, a command above 255, or a limit on "silent-after", which counts
///         all requests; *order is then unspecified.
bool ParseFaultOrder(const std::string& text, FaultOrder* order, std::string* error);

/// Reads the orders of a file of at most 64 KiB, one a line; blank lines and those that begin with
/// "#" count for nothing.
/// Returns false with a sentence in *error that names the file, and the line of an order that
///         cannot be read; *orders is then as it was.
bool LoadFaultOrders(const std::string& path, std::vector<FaultOrder>* orders, std::string* error);

/// The faults in force, and which of them struck. Used on one thread.
class FaultBox {
 public:
  FaultBox() = default;
  explicit FaultBox(std::vector<FaultOrder> orders);

  /// Asks whether a fault strikes the request in hand, and counts it when it does.
  /// Returns the argument of the first matching order (0 for a fault without one).
  /// `number`, when given, is compared with the order's argument: of a fault that strikes one
  /// certain piece.
  std::optional<uint32_t> Strike(Fault fault, uint8_t command,
                                 std::optional<uint32_t> number = std::nullopt);

  /// Counts one request in; true once more requests came than a "silent-after" order allows.
  bool CountRequestAndCheckSilence();

  /// Names of the faults that struck since the last call, in order.
  std::vector<std::string> TakeStruck();

 private:
  std::vector<FaultOrder> orders_;
  std::vector<std::string> struck_;
  uint64_t requests_ = 0;
};
