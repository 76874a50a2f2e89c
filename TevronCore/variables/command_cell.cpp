#include "variables/command_cell.h"

#include <optional>
#include <stdexcept>
#include <string_view>

#include "variables/command_code.h"
#include "variables/fault_list.h"
#include "variables/number_text.h"

namespace {

constexpr char kWhatACodeIs[] =
    "write 0x00 to 0xFF or 0 to 255, or for a long command 0x and an even number of hexadecimal "
    "digits, four or more";

bool IsHexadecimal(std::string_view digits) {
  return !digits.empty() &&
         digits.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

bool IsPrefixed(std::string_view text) { return WithoutHexPrefix(text).size() < text.size(); }

// "0x21" is hexadecimal, "041" octal, "33" decimal.
bool IsShortCode(std::string_view text) {
  std::optional<int32_t> code;
  if (IsPrefixed(text)) {
    code = WholeNumber(WithoutHexPrefix(text), 16);
  } else {
    code = WholeNumber(text, text.size() > 1 && text.front() == '0' ? 8 : 10);
  }
  return code && *code >= 0 && *code <= 255 && text.find('-') == std::string_view::npos;
}

CommandCellProblem NoCode(const std::string& text) {
  return {Quoted(text) + " is no command code; " + kWhatACodeIs, {}};
}

// Of a text whose hexadecimal pairs travel.
CommandCellProblem ProblemOfPairs(const std::string& text) {
  const std::string_view digits = WithoutHexPrefix(text);
  if (!IsHexadecimal(digits)) {
    return NoCode(text);
  }
  if (digits.size() % 2 != 0) {
    return {Quoted(text) + " has an odd number of digits; " + kWhatACodeIs, {}};
  }
  if (!IsPrefixed(text)) {
    return {{},
            Quoted(text) + " is sent as hexadecimal digits; write " +
                Quoted("0x" + std::string(digits)) +
                ", so that nobody takes it for another number"};
  }
  return {};
}

}  // namespace

CommandCellProblem ProblemOfCommand(const std::string& text) {
  if (text.size() < kLongCommandTextLength) {
    return IsShortCode(text) ? CommandCellProblem() : NoCode(text);
  }
  CommandCellProblem problem = ProblemOfPairs(text);
  if (!problem.fault.empty()) {
    return problem;
  }
  try {
    WireCommandOf(text);
  } catch (const std::out_of_range&) {
    return {Quoted(text) + " is too large for a command; write at most 0x7FFFFFFF", {}};
  } catch (const std::exception&) {
    return {Quoted(text) + " is no command code; write " + Quoted("0x" + text) +
                " for these hexadecimal digits",
            {}};
  }
  return problem;
}

CommandCellProblem ProblemOfDownload(const std::string& text) {
  CommandCellProblem problem = ProblemOfPairs(text);
  if (!problem.fault.empty()) {
    problem.fault = Quoted(text) +
                    " is no command of a download; write 0x and an even number of hexadecimal "
                    "digits, which are sent one pair a byte";
  }
  return problem;
}
