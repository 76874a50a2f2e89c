#include "upgrade/network_upgrade.h"

#include "CmxClient/cmx_client.h"
#include "CmxClient/file_transfer.h"
#include "CmxClient/firmware_stream_client.h"
#include "maintenance/maintenance.h"
#include "upgrade/upgrade_mode.h"
#include "upgrade/upgrade_outcome.h"
#include "variables/command_code.h"

using kavel::lidar::CmxClient;

namespace {

/// What an empty command text stands for.
constexpr char kDefaultCommand[] = "0x83";
constexpr char kKivaCommand[] = "0x83";

constexpr char kSentRestartFollows[] =
    "Upgrade package transmitted successfully. The lidar will automatically reboot within 10 "
    "seconds.";
constexpr char kSentRestartsItself[] =
    "Upgrade package transmitted successfully. The lidar will automatically reboot.";
constexpr char kNotSent[] = "Upgrade package transfer failed or is terminated.";
constexpr char kNotRestarted[] = "Auto reboot failed. Please reboot lidar manually.";

bool IsAnswerMissing(int32_t reason) {
  return reason == kavel::lidar::kNoReply || reason == kavel::lidar::kReplyBrokeOff;
}

/// Why the transfer ended and where, for the user. `is_open`: the last answer alone is missing.
std::string FailureOf(const UpgradeWork& work, const char* unit, int32_t reason, bool is_open) {
  if (work.image.empty()) {
    return work.image_problem;
  }
  return std::string("The transfer ended at ") + unit + std::to_string(work.progress->done_kib) +
         " of " + std::to_string(KibOf(work.image)) + ": " + CmxClient::ErrorText(reason) + "." +
         (is_open ? kMayHaveTakenAll : "");
}

/// Ends the transfer for everybody. True when it succeeded; otherwise `failure` is told.
bool Conclude(UpgradeWork& work, int32_t reason, const char* success, const std::string& failure) {
  const bool is_sent = reason == 0;
  work.step(kTransferStep, is_sent ? UpgradeStepState::kDone : UpgradeStepState::kFailed);
  work.transfer_ended();
  if (is_sent) {
    work.report->Success(success);
  } else {
    work.report->Error(failure);
    work.report->LogLine(failure, LogType::kInfo);
  }
  return is_sent;
}

UpgradeResult OrderRestart(UpgradeWork& work) {
  UpgradeResult result;
  work.step(kRestartStep, UpgradeStepState::kRunning);
  // Meant: nothing that the user does shortens this, so that the lidar has its time.
  if (work.stop->WaitFor(work.waits.reboot)) {
    return result;
  }
  const MaintenanceLink link{work.connection->sender().get(), work.state, work.model->connect_type};
  const int32_t reason = Maintenance(link, *work.report).Restart(*work.model->table, true);
  if (reason != 0) {
    work.report->Error(kNotRestarted);
  }
  work.step(kRestartStep, reason == 0 ? UpgradeStepState::kDone : UpgradeStepState::kFailed);
  // An order without an answer may have been carried out all the same.
  const bool may_restart =
      reason == 0 || IsAnswerMissing(reason) || !work.connection->sender()->IsOpen();
  result.end = may_restart ? UpgradeResult::End::kRestarts : UpgradeResult::End::kNotRestarted;
  if (reason != 0) {
    result.reason = RestartFailed(reason);
  }
  return result;
}

UpgradeResult SendPieces(UpgradeWork& work, const char* command_text) {
  const WireCommand command = WireCommandOf(command_text);
  int32_t reason = 0;
  const int32_t sent =
      kavel::lidar::TransferFile(*work.connection->sender(), work.image, command.code, false,
                                 &work.progress->done_kib, &reason, work.waits.file_piece_ms);
  if (!Conclude(work, sent, kSentRestartFollows, kNotSent)) {
    UpgradeResult result;
    const bool is_last = work.progress->done_kib >= KibOf(work.image);
    result.reason = FailureOf(work, "piece ", reason, is_last && IsAnswerMissing(reason));
    return result;
  }
  return OrderRestart(work);
}

int32_t Stream(UpgradeWork& work) {
  if (work.image.empty()) {
    return kavel::lidar::kBadArgument;
  }
  kavel::lidar::SerialClient& line = *work.connection->serial();
  int32_t reason = EnterUpgradeMode(line);
  if (reason == 0) {
    reason = kavel::lidar::StreamFirmware(line, work.image, kavel::lidar::kApplicationImage,
                                          kavel::lidar::AfterImage::kRestart,
                                          &work.progress->done_kib, work.waits.stream_piece_ms);
  }
  if (reason != 0) {
    LeaveUpgradeMode(line, *work.report);
  }
  return reason;
}

UpgradeResult SendStream(UpgradeWork& work) {
  const int32_t reason = Stream(work);
  const std::string failure = std::string(kNotSent) + " error:" + CmxClient::ErrorText(reason);
  UpgradeResult result;
  if (Conclude(work, reason, kSentRestartsItself, failure)) {
    work.step(kRestartStep, UpgradeStepState::kDone);
    result.end = UpgradeResult::End::kRestarts;
  } else {
    const bool is_open = MayHaveTakenAll(*work.progress, KibOf(work.image), reason);
    result.reason = FailureOf(work, "KiB ", reason, is_open);
  }
  return result;
}

}  // namespace

UpgradeResult RunNetworkUpgrade(UpgradeWork& work) {
  work.step(kTransferStep, UpgradeStepState::kRunning);
  const LidarModel& model = *work.model;
  if (model.connect_type == kNetworkLink) {
    return SendPieces(work, kDefaultCommand);
  }
  const bool takes_pieces = model.connect_type == kSerialCmx && model.family == SerialFamily::kKiva;
  return takes_pieces ? SendPieces(work, kKivaCommand) : SendStream(work);
}
