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

/// A transfer that ended at `place`, in words, for `reason`. `may_be_whole` as in UpgradeResult.
UpgradeResult Failure(const UpgradeWork& work, const std::string& place, int32_t reason,
                      bool may_be_whole) {
  UpgradeResult result;
  result.reason = work.image.empty()
                      ? work.image_problem
                      : "The transfer ended " + place + ": " + CmxClient::ErrorText(reason) + ".";
  result.may_be_whole = !work.image.empty() && may_be_whole;
  return result;
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
  std::string why;
  const int32_t reason = Maintenance(link, *work.report).Restart(*work.model->table, &why);
  if (reason == 0) {
    work.step(kRestartStep, UpgradeStepState::kDone);
  } else {
    work.report->Error(kNotRestarted);
    result.reason = RestartFailed(why);
  }
  // An order without an answer may have been carried out all the same.
  const bool may_restart =
      reason == 0 || IsAnswerMissing(reason) || !work.connection->sender()->IsOpen();
  result.end = may_restart ? UpgradeResult::End::kRestarts : UpgradeResult::End::kNotRestarted;
  return result;
}

UpgradeResult SendPieces(UpgradeWork& work, const char* command_text) {
  const WireCommand command = WireCommandOf(command_text);
  int32_t reason = 0;
  const int32_t sent =
      kavel::lidar::TransferFile(*work.connection->sender(), work.image, command.code, false,
                                 &work.progress->done_kib, &reason, work.waits.file_piece_ms);
  if (!Conclude(work, sent, kSentRestartFollows, kNotSent)) {
    const int piece = work.progress->done_kib;
    const int count = KibOf(work.image);
    return Failure(work, "at piece " + std::to_string(piece) + " of " + std::to_string(count),
                   reason, piece >= count && IsAnswerMissing(reason));
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
  if (!Conclude(work, reason, kSentRestartsItself, failure)) {
    const int count = KibOf(work.image);
    return Failure(work,
                   "after " + std::to_string(work.progress->done_kib) + " of " +
                       std::to_string(count) + " KiB",
                   reason, MayHaveTakenAll(*work.progress, count, reason));
  }
  work.step(kRestartStep, UpgradeStepState::kDone);
  UpgradeResult result;
  result.end = UpgradeResult::End::kRestarts;
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
