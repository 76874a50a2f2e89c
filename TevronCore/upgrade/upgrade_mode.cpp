#include "upgrade/upgrade_mode.h"

#include "CmxClient/cmx_client.h"

using kavel::lidar::SerialClient;

namespace {

constexpr uint8_t kWorkMode = 0;
constexpr uint8_t kUpgradeMode = 1;

/// What the line says of an exchange, as a reason of command_sender.h.
int32_t ReasonOf(int32_t result) {
  switch (result) {
    case kavel::lidar::kSerialNotReady:
      return kavel::lidar::kNotConnected;
    case kavel::lidar::kSerialNoAnswer:
      return kavel::lidar::kNoReply;
    case kavel::lidar::kSerialBadAnswer:
      return kavel::lidar::kBadReply;
    default:
      return result;
  }
}

/// "" for success.
std::string FailureOf(SerialClient& line, int mode) {
  if (mode != kWorkMode && mode != kUpgradeMode) {
    return "set upgrade mode error, ret:" +
           kavel::lidar::CmxClient::ErrorText(kavel::lidar::kBadArgument);
  }
  const int32_t result = line.SwitchMode(static_cast<uint8_t>(mode), 0);
  if (result == 0) {
    return "";
  }
  return mode == kWorkMode ? "restore mode failed, ret=" + std::to_string(result)
                           : "set upgrade mode error, ret:" +
                                 kavel::lidar::CmxClient::ErrorText(ReasonOf(result));
}

}  // namespace

int32_t EnterUpgradeMode(SerialClient& line) { return ReasonOf(line.SwitchMode(kUpgradeMode, 0)); }

void LeaveUpgradeMode(SerialClient& line, UserReport& report) {
  const std::string failure = FailureOf(line, kWorkMode);
  if (!failure.empty()) {
    report.LogLine(failure, LogType::kError);
  }
}

bool SetUpgradeMode(SerialClient* line, const LinkState& state, int mode, UserReport& report) {
  if (line == nullptr || !state.connected || state.upgrading) {
    // Meant: "upgrade", as for every setting that any serial link takes.
    report.Error("lidar is not connected, or lidar is upgrade");
    return false;
  }
  const std::string failure = FailureOf(*line, mode);
  if (!failure.empty()) {
    report.Error(failure);
    report.LogLine(failure, LogType::kError);
    return false;
  }
  report.Success("set upgrade mode successful");
  return true;
}
