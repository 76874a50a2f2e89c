#include "upgrade/upgrade_outcome.h"

#include "CmxClient/cmx_client.h"

namespace {

using Found = UpgradeReadBack::Found;

std::string Unknown(const std::string& before) {
  const std::string known = before.empty() ? "" : " It ran " + before + " before.";
  return " What the lidar runs now is not known." + known;
}

UpgradeOutcome Compared(const UpgradeResult& result, const std::string& before,
                        const std::string& after) {
  const std::string taken = result.taken.empty() ? "" : " Taken: " + result.taken + ".";
  if (before.empty()) {
    return {false, "The lidar is back and runs " + after +
                       ". What it ran before is not known: compare this with what you sent." +
                       taken};
  }
  if (after != before) {
    return {false, "Upgrade complete: was " + before + ", is " + after + "." + taken};
  }
  if (!result.version_shows) {
    return {false, "Upgrade complete: " + result.taken +
                       ", which has no version of its own. The lidar is back and runs " + after +
                       "."};
  }
  return {true, "The lidar is back and runs " + after +
                    " as before: it did not start the new firmware, unless the file holds this "
                    "very version." +
                    taken};
}

UpgradeOutcome AfterRestart(const UpgradeResult& result, const std::string& before,
                            const UpgradeReadBack& after, std::chrono::milliseconds patience) {
  const std::string sent = result.reason.empty() ? "The lidar took the firmware." : result.reason;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience).count();
  switch (after.found) {
    case Found::kRead:
      return Compared(result, before, after.version);
    case Found::kSilent:
      return {true, sent + " It is back, but did not tell its version." + Unknown(before)};
    case Found::kNotBack:
      return {true, sent + " It did not come back within " + std::to_string(seconds) + " s." +
                        Unknown(before) +
                        " Check its power and its line, then connect to it to see its version."};
    case Found::kEnded:
      break;
  }
  return {true, sent + " It was not waited for any longer." + Unknown(before)};
}

}  // namespace

UpgradeOutcome OutcomeOf(const UpgradeResult& result, const std::string& before,
                         const UpgradeReadBack& after, std::chrono::milliseconds patience) {
  if (result.end == UpgradeResult::End::kRestarts) {
    return AfterRestart(result, before, after, patience);
  }
  const std::string taken = result.taken.empty()
                                ? ""
                                : " Taken before that: " + result.taken +
                                      ", which the lidar uses from its next restart on.";
  const std::string runs =
      after.found == Found::kRead ? " The lidar runs " + after.version + "." : Unknown(before);
  return {true, result.reason + taken + runs};
}

std::string RestartFailed(int32_t reason) {
  return "The lidar took the firmware, but the order to restart failed: " +
         kavel::lidar::CmxClient::ErrorText(reason) +
         ". It starts the new firmware at its next restart.";
}

bool MayHaveTakenAll(const UpgradeProgress& progress, int end_kib, int32_t reason) {
  return progress.done_kib >= end_kib &&
         (reason == kavel::lidar::kNoReply || reason == kavel::lidar::kNotConnected);
}
