#include "upgrade/upgrade_outcome.h"

#include "CmxClient/command_sender.h"

namespace {

using Found = UpgradeReadBack::Found;

std::string Taken(const UpgradeResult& result) {
  return result.taken.empty() ? "" : " Taken: " + result.taken + ".";
}

std::string Unknown(const std::string& before) {
  const std::string known = before.empty() ? "" : " It ran " + before + " before.";
  return " What the lidar runs now is not known." + known;
}

UpgradeOutcome Compared(const UpgradeResult& result, const std::string& before,
                        const std::string& after) {
  const std::string taken = Taken(result);
  const std::string now = std::string(result.has_left ? "The lidar is back" : "The lidar answers") +
                          " and runs " + after;
  if (before.empty()) {
    return {false,
            now + ". What it ran before is not known: compare this with what you sent." + taken};
  }
  if (after != before) {
    return {false, "Upgrade complete: was " + before + ", is " + after + "." + taken};
  }
  if (!result.reason.empty()) {
    return {true, result.reason + " It runs " + after + " as before." + taken};
  }
  if (!result.has_left) {
    return {true, now +
                      " as before. It was not seen to restart: connect to it again in a minute to "
                      "see whether it still does." +
                      taken};
  }
  if (!result.version_shows) {
    return {false, "Upgrade complete: " + result.taken + ", which has no version of its own. " +
                       now + "."};
  }
  return {true, now +
                    " as before: it did not start the new firmware, unless the file holds this "
                    "very version." +
                    taken};
}

/// What was found out where no version of the lidar was.
std::string Missed(const std::string& before, const UpgradeReadBack& after,
                   std::chrono::milliseconds patience) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience).count();
  switch (after.found) {
    case Found::kAnother:
      return " What answers now runs " + after.version +
             " and has another serial number, so it may be another lidar." + Unknown(before);
    case Found::kNotBack:
      return " The lidar did not come back within " + std::to_string(seconds) + " s." +
             Unknown(before) +
             " Check its power and its line, then connect to it to see its version.";
    case Found::kSilent:
      return " The lidar answers, but did not tell its version." + Unknown(before);
    default:
      return " It was not waited for any longer." + Unknown(before);
  }
}

UpgradeOutcome AfterRestart(const UpgradeResult& result, const std::string& before,
                            const UpgradeReadBack& after, std::chrono::milliseconds patience) {
  if (after.found == Found::kRead) {
    return Compared(result, before, after.version);
  }
  const std::string sent = result.reason.empty() ? "The lidar took the firmware." : result.reason;
  return {true, sent + Missed(before, after, patience)};
}

UpgradeOutcome WithoutRestart(const UpgradeResult& result, const std::string& before,
                              const UpgradeReadBack& after, std::chrono::milliseconds patience) {
  const bool is_read = after.found == Found::kRead;
  if (result.may_be_whole && is_read && !before.empty() && after.version != before) {
    return {false, "Upgrade complete: was " + before + ", is " + after.version +
                       ". Only the last answer to the transfer did not arrive." + Taken(result)};
  }
  std::string text = result.reason;
  if (result.may_be_whole) {
    text +=
        " Only the last answer is missing, so the lidar may start the new firmware at its next "
        "restart.";
  }
  if (result.end == UpgradeResult::End::kNotRestarted) {
    text += Taken(result);
  } else if (!result.taken.empty()) {
    text += " Taken before that: " + result.taken + ", to be used from a restart on.";
  }
  if (is_read) {
    return {true, text + " The lidar runs " + after.version + "."};
  }
  const bool is_ended = after.found == Found::kEnded;
  return {true, text + (is_ended ? Unknown(before) : Missed(before, after, patience))};
}

}  // namespace

UpgradeOutcome OutcomeOf(const UpgradeResult& result, const std::string& before,
                         const UpgradeReadBack& after, std::chrono::milliseconds patience) {
  return result.end == UpgradeResult::End::kRestarts
             ? AfterRestart(result, before, after, patience)
             : WithoutRestart(result, before, after, patience);
}

std::string RestartFailed(std::string reason) {
  if (!reason.empty() && reason.back() == '.') {
    reason.pop_back();
  }
  return "The lidar took the firmware, but the order to restart failed: " + reason +
         ". It starts the new firmware at its next restart.";
}

bool MayHaveTakenAll(const UpgradeProgress& progress, int end_kib, int32_t reason) {
  return progress.done_kib >= end_kib &&
         (reason == kavel::lidar::kNoReply || reason == kavel::lidar::kNotConnected);
}
