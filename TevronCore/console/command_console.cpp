#include "console/command_console.h"

#include <QVariantMap>
#include <algorithm>
#include <ctime>
#include <iomanip>
#include <iostream>
#include <locale>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "CmxClient/device_commands.h"
#include "CmxClient/hex_text.h"
#include "variables/number_text.h"

using kavel::lidar::HexText;

namespace {

constexpr size_t kHeaderSize = 8;

/// The low byte of a hexadecimal number. Throws std::invalid_argument for a text that is none and
/// std::out_of_range for one that does not fit a 32-bit signed integer.
uint8_t ParseLowByte(const std::string& text) {
  size_t used = 0;
  const int number = std::stoi(text, &used, 16);
  if (text.find_first_not_of(" \t\r\n", used) != std::string::npos) {
    throw std::invalid_argument("characters behind the number");
  }
  // Meant: what stands above the low byte is dropped unchecked.
  return static_cast<uint8_t>(number);
}

uint8_t ParseCommand(const std::string& text) {
  return ParseLowByte(std::string(WithoutHexPrefix(text)));
}

std::vector<uint8_t> ParsePayload(const std::string& text) {
  std::vector<uint8_t> bytes;
  std::istringstream tokens(text);
  for (std::string token; std::getline(tokens, token, ' ');) {
    if (!token.empty()) {
      bytes.push_back(ParseLowByte(token));
    }
  }
  return bytes;
}

std::string LocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &now);
#else
  localtime_r(&now, &local);
#endif
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::put_time(&local, "%F %X");
  return text.str();
}

struct Request {
  uint8_t command = 0;
  std::vector<uint8_t> payload;
};

/// The request that the two texts describe, or nothing after reporting what is wrong with them.
std::optional<Request> ParseRequest(CommandConsole::Family family, const std::string& command,
                                    const std::string& payload, UserReport& report) {
  const std::string name = family == CommandConsole::Family::kCmx ? "CMX" : "Serial";
  // Meant: a number that is too large is reported as the header's fault, even in the payload.
  std::string culprit = "header";
  try {
    Request request;
    request.command = ParseCommand(command);
    culprit = "payload";
    request.payload = ParsePayload(payload);
    return request;
  } catch (const std::invalid_argument&) {
    std::cout << "Invalid_argument" << std::endl;
  } catch (const std::out_of_range&) {
    culprit = "header";
    std::cout << "Out_of_range" << std::endl;
  }
  report.Error("Incorrect " + name + " " + culprit + " was entered. Parsing failed.");
  return std::nullopt;
}

/// What the lidar does after accepting a command, where that is more than to answer.
std::string EffectOf(uint8_t command) {
  switch (command) {
    case kavel::lidar::kCmdRestart:
      return "Lidar restart.";
    case kavel::lidar::kCmdFactoryReset:
      return "Lidar reset.";
    default:
      return "";
  }
}

}  // namespace

CommandConsole::Outcome CommandConsole::Send(kavel::lidar::CommandSender* sender,
                                             const LinkState& state, Family family,
                                             const QString& command, const QString& payload) {
  if (sender == nullptr || !sender->IsOpen() || !state.MayCommand()) {
    return {};
  }
  Outcome outcome;
  outcome.attempted = true;
  return_header_.clear();
  return_payload_.clear();
  const std::optional<Request> request =
      ParseRequest(family, command.toStdString(), payload.toStdString(), report_);
  if (!request) {
    return outcome;
  }

  std::vector<uint8_t> reply;
  const bool accepted = sender->QueryCommand(request->payload, reply, request->command, true) == 0;
  // A refusal is a reply too: its header shows the lidar's return code.
  if (reply.size() < kHeaderSize) {
    std::cout << "query command failed!" << std::endl;
    report_.Error("Query cmx command fail. Please input right cmx command header and payload.");
    return outcome;
  }
  ShowReply(reply);
  Remember(command, payload);
  if (accepted) {
    outcome.success = EffectOf(request->command);
  }
  return outcome;
}

void CommandConsole::ShowReply(const std::vector<uint8_t>& reply) {
  const size_t shown = std::min(reply.size(), kDisplayLimit);
  return_header_ = HexText(reply.data(), kHeaderSize);
  return_payload_ = HexText(reply.data() + kHeaderSize, shown - kHeaderSize);
  if (reply.size() > shown) {
    report_.Error(
        "WARNING: This return payload is too long, only the first 1024 bytes are displayed. For a "
        "complete payload please use the log bytes flow function.");
  }
}

void CommandConsole::Remember(const QString& command, const QString& payload) {
  history_.push_front({LocalTime(), command, payload});
  if (history_.size() > kHistorySize) {
    history_.pop_back();
  }
}

QVariantList CommandConsole::History() const {
  QVariantList list;
  for (const Entry& entry : history_) {
    list.append(QVariantMap{{"record_time", QString::fromStdString(entry.time)},
                            {"send_cmd_history", entry.command},
                            {"send_payload_history", entry.payload}});
  }
  return list;
}
