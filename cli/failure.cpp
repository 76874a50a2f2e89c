#include "failure.h"

#include "CmxClient/cmx_client.h"

Failure FailureOf(int32_t reason) {
  using namespace kavel::lidar;
  const std::string text = CmxClient::ErrorText(reason);
  switch (reason) {
    case kNotConnected:
    case kNoReply:
    case kReplyBrokeOff:
    case kSendIncomplete:
      return {ExitCode::kBrokenOff, text};
    case kBadArgument:
      return {ExitCode::kUsage, text};
    default:
      return {ExitCode::kNo, text, reason > 0 ? std::optional(reason) : std::nullopt};
  }
}
