#include "faults/fault_modes.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <utility>

#include "files/whole_file.h"
#include "variables/number_text.h"

namespace {

bool ReadNumber(const std::string& text, uint32_t* number) {
  const std::string_view digits = WithoutHexPrefix(text);
  const auto value = WholeNumber<uint32_t>(digits, digits.size() == text.size() ? 10 : 16);
  *number = value.value_or(0);
  return value.has_value();
}

// Cuts "…<mark>tail" off the text; no mark leaves the text alone and gives no tail.
std::optional<std::string> CutTail(std::string* text, char mark) {
  const size_t at = text->find(mark);
  if (at == std::string::npos) {
    return std::nullopt;
  }
  std::string tail = text->substr(at + 1);
  text->resize(at);
  return tail;
}

const FaultMode* FindMode(const std::string& name) {
  const auto& modes = FaultModes();
  const auto found =
      std::find_if(modes.begin(), modes.end(), [&](const FaultMode& m) { return name == m.name; });
  return found == modes.end() ? nullptr : &*found;
}

bool Fail(std::string* error, std::string sentence) {
  *error = std::move(sentence);
  return false;
}

bool ReadArgument(const FaultMode& mode, const std::optional<std::string>& text, FaultOrder* order,
                  std::string* error) {
  const std::string name = mode.name;
  if (*mode.argument == '\0') {
    return !text || Fail(error, "fault \"" + name + "\" takes no argument");
  }
  if (!text) {
    return Fail(error, "fault \"" + name + "\" needs an argument: " + name + "=" + mode.argument);
  }
  if (!ReadNumber(*text, &order->argument) || order->argument < mode.argument_min ||
      order->argument > mode.argument_max) {
    return Fail(error, "the argument of fault \"" + name + "\" is a number from " +
                           std::to_string(mode.argument_min) + " to " +
                           std::to_string(mode.argument_max) + ", not \"" + *text + "\"");
  }
  return true;
}

constexpr FaultMode kModes[] = {
    {Fault::kDrop, "drop", "", 0, 0, "carries the command out and never answers"},
    {Fault::kDelay, "delay", "MS", 1, 600000,
     "takes MS milliseconds for the answer; requests that came meanwhile wait their turn"},
    {Fault::kLate, "late", "MS", 1, 600000,
     "answers MS milliseconds behind the request, however many others came since"},
    {Fault::kCorrupt, "corrupt", "", 0, 0,
     "flips bits in the frame of the answer, so that it can no longer be recognised"},
    {Fault::kTruncate, "truncate", "", 0, 0,
     "sends only the first half of the answer and keeps the link open"},
    {Fault::kSplit, "split", "", 0, 0, "sends the answer byte by byte, 2 ms apart"},
    {Fault::kDrip, "drip", "MS", 1, 600000,
     "sends what follows the header of the answer byte by byte, MS milliseconds apart"},
    {Fault::kDripHeader, "drip-header", "MS", 1, 600000,
     "sends the header of the answer byte by byte, MS milliseconds apart, and then the rest"},
    {Fault::kGarbage, "garbage", "", 0, 0, "sends eleven stray bytes in front of the answer"},
    {Fault::kForeign, "foreign", "", 0, 0,
     "sends a frame of another protocol version in front of the answer"},
    {Fault::kUnasked, "unasked", "", 0, 0,
     "sends the answer to a command that nobody sent in front of the answer"},
    {Fault::kBabble, "babble", "", 0, 0,
     "sends stray bytes without end in place of the answer, until the link is closed"},
    {Fault::kFlood, "flood", "", 0, 0,
     "sends the answer again and again without end, until the link is closed"},
    {Fault::kWrongCommand, "wrong-command", "", 0, 0,
     "answers with the next higher command code and return code 0"},
    {Fault::kReturnCode, "return-code", "N", 0, 255,
     "answers with return code N and does nothing; with 0 it claims what it did not do"},
    {Fault::kShort, "short", "", 0, 0,
     "sends the first half of the answer's payload in a whole frame"},
    {Fault::kLong, "long", "", 0, 0,
     "sends sixteen bytes behind the answer's payload, in the same frame"},
    {Fault::kCloseBeforeReply, "close-before-reply", "", 0, 0,
     "carries the command out and closes the link in place of the answer"},
    {Fault::kCloseMidReply, "close-mid-reply", "", 0, 0,
     "closes the link after the first half of the answer"},
    {Fault::kReset, "reset", "", 0, 0,
     "carries the command out and resets the link in place of the answer"},
    {Fault::kStale, "stale", "", 0, 0, "sends the answer twice in one piece"},
    {Fault::kTwice, "twice", "", 0, 0,
     "sends the answer again 20 ms behind it, in front of the next one"},
    {Fault::kEcho, "echo", "", 0, 0,
     "sends every byte of the request back at once, as a line that echoes"},
    {Fault::kHugeLength, "huge-length", "", 0, 0,
     "announces far more payload than the answer holds"},
    {Fault::kSilentAfter, "silent-after", "N", 0, 1000000,
     "neither carries out nor answers anything after the first N requests"},
    {Fault::kRefusePiece, "refuse-piece", "N", 1, 65536,
     "refuses piece N of a firmware image with return code 3"},
    {Fault::kLosePiece, "lose-piece", "N", 1, 65536,
     "never sees piece N of a firmware image and does not answer it"},
    {Fault::kDamagePiece, "damage-piece", "N", 1, 65536,
     "takes piece N of a firmware image for damaged: return code 7"},
    {Fault::kCloseAtPiece, "close-at-piece", "N", 1, 65536,
     "closes the link at piece N of a firmware image, unanswered"},
    {Fault::kDieAtPiece, "die-at-piece", "N", 1, 65536,
     "loses its power for a moment at piece N of a firmware image, unanswered, and comes back "
     "with what it had"},
    {Fault::kAuthShortProbe, "auth-short-probe", "", 0, 0,
     "answers the authentication probe with too few bytes to hold the value"},
    {Fault::kAuthShortChallenge, "auth-short-challenge", "", 0, 0,
     "hands out a challenge that is only half as long as it has to be"},
    {Fault::kAuthZeroChallenge, "auth-zero-challenge", "", 0, 0,
     "hands out a challenge of zero bytes, which asks for no response"},
    {Fault::kAuthRefuseResponse, "auth-refuse-response", "", 0, 0,
     "refuses every authentication response, the right one too"},
};

// "TIMES", or "FROM-TO".
bool ReadTimes(const std::string& text, FaultOrder* order) {
  std::string first = text;
  const std::optional<std::string> last = CutTail(&first, '-');
  uint32_t from = 1;
  uint32_t to = 0;
  if (!ReadNumber(last ? *last : first, &to) || (last && !ReadNumber(first, &from)) || from == 0 ||
      to < from) {
    return false;
  }
  order->spared = from - 1;
  order->times = to - from + 1;
  return true;
}

}  // namespace

const std::vector<FaultMode>& FaultModes() {
  static const std::vector<FaultMode> modes(std::begin(kModes), std::end(kModes));
  return modes;
}

bool ParseFaultOrder(const std::string& text, FaultOrder* order, std::string* error) {
  *order = FaultOrder();
  std::string name = text;
  // From the back, because "#" follows "@" follows "=".
  const std::optional<std::string> times = CutTail(&name, '#');
  const std::optional<std::string> command = CutTail(&name, '@');
  const std::optional<std::string> argument = CutTail(&name, '=');

  const FaultMode* mode = FindMode(name);
  if (mode == nullptr) {
    return Fail(error, "there is no fault named \"" + name + "\"");
  }
  order->fault = mode->fault;
  if (!ReadArgument(*mode, argument, order, error)) {
    return false;
  }
  if (mode->fault == Fault::kSilentAfter && (command || times)) {
    return Fail(error,
                "fault \"" + name + "\" counts all requests: it takes no @CMD and no #TIMES");
  }

  uint32_t number = 0;
  if (command) {
    if (!ReadNumber(*command, &number) || number > 0xFF) {
      return Fail(error, "\"@" + *command + "\" is not a command code from 0 to 0xFF");
    }
    order->command = static_cast<uint8_t>(number);
  }
  if (times) {
    if (!ReadTimes(*times, order)) {
      return Fail(error, "\"#" + *times + "\" is not a number of times from 1 up");
    }
  }
  return true;
}

bool LoadFaultOrders(const std::string& path, std::vector<FaultOrder>* orders, std::string* error) {
  constexpr uint64_t kMostBytes = uint64_t{64} * 1024;
  std::string text;
  if (const std::string reason = ReadWholeFile(path, kMostBytes, &text); !reason.empty()) {
    return Fail(error, "cannot read the faults in " + PathText(path) + ": " + reason);
  }
  std::vector<FaultOrder> read;
  std::istringstream lines(text);
  size_t number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (!line.empty() && line.back() == '\r') {
      line.pop_back();
    }
    std::string reason;
    if (!line.empty() && line.front() != '#' &&
        !ParseFaultOrder(line, &read.emplace_back(), &reason)) {
      return Fail(error, path + ", line " + std::to_string(number).append(": ").append(reason));
    }
  }
  *orders = std::move(read);
  return true;
}

FaultBox::FaultBox(std::vector<FaultOrder> orders) : orders_(std::move(orders)) {}

std::optional<uint32_t> FaultBox::Strike(Fault fault, uint8_t command,
                                         std::optional<uint32_t> number) {
  for (FaultOrder& order : orders_) {
    if (order.fault != fault || (number && order.argument != *number)) {
      continue;
    }
    if (order.command && *order.command != command) {
      continue;
    }
    if (order.spared > 0) {
      --order.spared;
      continue;
    }
    if (order.times) {
      if (*order.times == 0) {
        continue;
      }
      --*order.times;
    }
    struck_.emplace_back(FaultModes()[static_cast<size_t>(fault)].name);
    return order.argument;
  }
  return std::nullopt;
}

bool FaultBox::CountRequestAndCheckSilence() {
  ++requests_;
  for (const FaultOrder& order : orders_) {
    if (order.fault == Fault::kSilentAfter && requests_ > order.argument) {
      struck_.emplace_back("silent-after");
      return true;
    }
  }
  return false;
}

std::vector<std::string> FaultBox::TakeStruck() { return std::exchange(struck_, {}); }
