#include "upgrade/kiva_upgrade.h"

#include <QString>

#include "CmxClient/cmx_client.h"
#include "CmxClient/device_commands.h"
#include "CmxClient/firmware_stream_client.h"
#include "maintenance/maintenance.h"
#include "upgrade/upgrade_mode.h"
#include "upgrade/upgrade_outcome.h"
#include "upgrade/upgrade_package.h"

using kavel::lidar::CmxClient;

namespace {

/// One upgrade. Each step returns false when it ended everything, after it has told why.
class KivaUpgrade {
 public:
  explicit KivaUpgrade(UpgradeWork& work)
      : work_(work), line_(*work.connection->serial()), sender_(*work.connection->sender()) {}

  UpgradeResult Run() {
    work_.step(kTransferStep, UpgradeStepState::kRunning);
    const bool is_sent = Parse() && SendAll();
    if (!is_sent && was_in_upgrade_mode_) {
      LeaveUpgradeMode(line_, *work_.report);
    }
    work_.transfer_ended();
    if (is_sent) {
      Restart();
    }
    return std::move(result_);
  }

 private:
  struct Planned {
    std::string name;
    uint8_t type = 0;
    std::vector<uint8_t> image;
  };

  bool Parse() {
    if (!ParseUpgradePackage(work_.image, header_, Log())) {
      return End("Invalid Kiva OTA upgrade package");
    }
    Log()("Kiva OTA package parsed: flags=0x" + Flags() +
          ", total_size=" + std::to_string(work_.image.size()));
    return true;
  }

  bool SendAll() {
    if (!Prepare() || !Plan()) {
      return false;
    }
    for (const Planned& planned : plan_) {
      if (!Send(planned)) {
        return false;
      }
    }
    return true;
  }

  bool Prepare() {
    if (line_.SetBaudRate(work_.command_baud_rate_bps, work_.command_baud_rate_bps) != 0) {
      return End("Kiva upgrade: set baudrate failed");
    }
    was_in_upgrade_mode_ = true;  // also without an answer
    if (EnterUpgradeMode(line_) != 0 || kavel::lidar::GetActivePartition(sender_, &runs_b_) != 0) {
      return End("Kiva upgrade: change mode failed");
    }
    Log()("Kiva upgrade: current partition=" + Partition());
    return !work_.stop->WaitFor(work_.waits.partition);
  }

  bool Plan() {
    // Meant: the running partition is never written, so that the lidar can always start.
    if (!Add(runs_b_ ? kBmbAppA : kBmbAppB, kavel::lidar::kApplicationImage) ||
        !Add(kBmbFpga, kavel::lidar::kBaseBoardFpga) ||
        !Add(kTmbFpga, kavel::lidar::kTopBoardFpga) ||
        !Add(kTmbParam, kavel::lidar::kTopBoardParameters)) {
      return false;
    }
    if (plan_.empty()) {
      return EndAndLog("Kiva upgrade: no component matches current upgrade plan, partition=" +
                       Partition() + ", flags=0x" + Flags());
    }
    int total_kib = 0;
    std::vector<std::string> names;
    for (const Planned& planned : plan_) {
      total_kib += KibOf(planned.image);
      names.push_back(planned.name);
    }
    work_.progress->total_kib = total_kib;
    work_.progress->done_kib = 0;
    work_.plan(names);
    work_.image = {};  // the components hold what is needed of it
    return true;
  }

  bool Add(UpgradeComponentIndex index, uint8_t type) {
    Planned planned{UpgradeComponentName(index), type, {}};
    const UpgradeComponent& component = header_.components[index];
    if (!component.present) {
      Log()("Kiva upgrade: skip " + planned.name + ", not found in package");
      return true;
    }
    if (!ExtractComponent(work_.image, component, planned.name, planned.image, Log()) ||
        planned.image.empty()) {
      return End("Kiva upgrade: failed to extract " + planned.name);
    }
    plan_.push_back(std::move(planned));
    return true;
  }

  bool Send(const Planned& planned) {
    const std::string who = "Kiva upgrade: " + planned.name;
    Log()("Kiva upgrade: sending " + planned.name + " (type=0x0" + std::to_string(planned.type) +
          ", size=" + std::to_string(planned.image.size()) + ")");
    work_.step(planned.name, UpgradeStepState::kRunning);
    const int32_t reason = kavel::lidar::StreamFirmware(
        line_, planned.image, planned.type, kavel::lidar::AfterImage::kStay,
        &work_.progress->done_kib, work_.waits.stream_piece_ms);
    end_kib_ += KibOf(planned.image);
    if (reason != 0) {
      work_.step(planned.name, UpgradeStepState::kFailed);
      EndAndLog(who + " failed, error=" + CmxClient::ErrorText(reason));
      result_.may_be_whole =
          &planned == &plan_.back() && MayHaveTakenAll(*work_.progress, end_kib_, reason);
      return false;
    }
    work_.step(planned.name, UpgradeStepState::kDone);
    result_.taken += (result_.taken.empty() ? "" : ", ") + planned.name;
    Log()(who + " completed");
    return true;
  }

  void Restart() {
    work_.step(kRestartStep, UpgradeStepState::kRunning);
    const MaintenanceLink link{&sender_, work_.state, work_.model->connect_type};
    const int32_t reason = Maintenance(link, *work_.report).RestartKiva();
    // Meant: the lidar has everything, and the order may have been carried out without an answer.
    work_.report->Success(
        reason == 0 ? "Kiva upgrade completed. Restart command has been sent."
                    : "Kiva upgrade completed. The restart command was not acknowledged; please "
                      "power-cycle or reconnect the lidar if it does not respond.");
    if (reason == 0) {
      work_.step(kRestartStep, UpgradeStepState::kDone);
    } else {
      result_.reason = RestartFailed(CmxClient::ErrorText(reason));
    }
    result_.end = reason > 0 ? UpgradeResult::End::kNotRestarted : UpgradeResult::End::kRestarts;
    result_.version_shows = result_.taken != UpgradeComponentName(kTmbParam);
  }

  bool End(const std::string& text) {
    work_.report->Error(text);
    result_.reason = text + ".";
    return false;
  }
  bool EndAndLog(const std::string& text) {
    End(text);
    work_.report->LogLine(text, LogType::kError);
    return false;
  }

  std::function<void(const std::string&)> Log() {
    return [this](const std::string& text) { work_.report->LogLine(text, LogType::kInfo); };
  }
  std::string Flags() const { return QString::number(header_.flags, 16).toStdString(); }
  std::string Partition() const { return runs_b_ ? "B" : "A"; }

  UpgradeWork& work_;
  kavel::lidar::SerialClient& line_;
  kavel::lidar::CommandSender& sender_;
  UpgradePackageHeader header_;
  bool runs_b_ = false;
  bool was_in_upgrade_mode_ = false;
  std::vector<Planned> plan_;
  int end_kib_ = 0;  ///< progress at the end of the component
  UpgradeResult result_;
};

}  // namespace

UpgradeResult RunKivaUpgrade(UpgradeWork& work) { return KivaUpgrade(work).Run(); }
