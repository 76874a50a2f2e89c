#include "device/virtual_device.h"

#include <utility>

#include "CmxClient/device_commands.h"
#include "variables/monitor_tables.h"

namespace {

// Network settings of the tables. A device drops the link as soon as it has taken them.
constexpr uint8_t kNetworkSettings = 0x21;

// The variable that shows what firmware runs: date, a blank, a letter of the model's own, number.
constexpr char kVersionVariable[] = "SWVER_YMD";
constexpr size_t kDateSize = 10;
constexpr size_t kNumberAt = 12;

}  // namespace

VirtualDevice::VirtualDevice(std::shared_ptr<const ConfigParser> table, DeviceProfile profile,
                             Clock clock)
    : table_(std::move(table)),
      model_(profile.model),
      clock_(std::move(clock)),
      start_(clock_()),
      memory_(*table_),
      maintenance_(profile.family),
      firmware_(profile.model, profile.family),
      logs_(*table_, profile.family, profile.log_size),
      guard_(std::move(profile.auth), std::move(profile.auth_keys), profile.auth_required) {
  memory_.Measure(profile.seed);
  const VarInfo* block = MonitorBlockOf(*table_);
  if (block != nullptr && !profile.hardware.empty()) {
    memory_.SetFactory(*block, profile.hardware);
  }
  SeedMaintenance();
  SeedFirmware(true);
}

DeviceReply VirtualDevice::Answer(const DeviceRequest& request, AuthSession* session,
                                  FaultBox* faults, std::string* what) {
  DeviceReply reply;
  reply.code = request.code;
  if (request.oversized) {
    *what = "too long";
    reply.return_code = kBadLength;
  } else if (const auto code = faults->Strike(Fault::kReturnCode, request.code)) {
    *what = "not carried out";
    reply.return_code = static_cast<uint8_t>(*code);
  } else if (auto handshake = guard_.Answer(request, session, faults)) {
    *what = "authentication";
    reply = std::move(*handshake);
  } else if (!guard_.Admit(request.code, session)) {
    *what = "protected";
    reply.return_code = kAuthenticationRequired;
  } else {
    reply = CarryOut(request, faults, what);
    if (!maintenance_.in_upgrade_mode()) {
      firmware_.LeaveUpgradeMode();
    }
  }
  reply.long_frame = request.long_frame;
  reply.number = request.number;
  return reply;
}

uint32_t VirtualDevice::UpTimeSeconds() const {
  return static_cast<uint32_t>(
      std::chrono::duration_cast<std::chrono::seconds>(clock_() - start_).count());
}

bool VirtualDevice::TakeChanged() {
  const bool firmware_changed = firmware_.TakeChanged();
  return std::exchange(changed_, false) || firmware_changed;
}

DeviceReply VirtualDevice::CarryOut(const DeviceRequest& request, FaultBox* faults,
                                    std::string* what) {
  DeviceReply reply;
  reply.code = request.code;
  if (RunBuiltIn(request, &reply, what)) {
    return reply;
  }
  if (auto answer = logs_.Answer(request, what)) {
    return std::move(*answer);
  }
  if (auto answer = firmware_.Answer(request, maintenance_.in_upgrade_mode(), faults, what)) {
    if (answer->aftermath == Aftermath::kRestart) {
      Restart();
    } else if (answer->aftermath == Aftermath::kPowerCycle) {
      firmware_.PowerCycle();
      PowerUp();
    }
    return std::move(*answer);
  }
  if (auto answer = maintenance_.Answer(request, UpTimeSeconds())) {
    *what = "maintenance";
    // Of the maintenance commands, exactly those that change something carry a payload.
    if (!request.payload.empty() && answer->return_code == kAccepted) {
      changed_ = true;
      MirrorMaintenance();
    }
    return std::move(*answer);
  }
  if (RunTableCommand(request, &reply, what)) {
    return reply;
  }
  *what = "unknown";
  reply.return_code = kUnknownCommand;
  return reply;
}

bool VirtualDevice::Preset(const std::string& name, const std::string& text, std::string* error) {
  if (!memory_.Preset(name, text, error)) {
    return false;
  }
  SeedMaintenance();
  SeedFirmware(false);
  return true;
}

// The firmware that the table's variable shows is the one that runs.
void VirtualDevice::SeedFirmware(bool both) {
  const auto shown = memory_.TextOf(kVersionVariable);
  if (shown && shown->size() > kNumberAt) {
    firmware_.SetRunning({shown->substr(kNumberAt), shown->substr(0, kDateSize)}, both);
  }
  ShowVersions();
}

void VirtualDevice::ShowVersions() {
  const auto number_of = [this](uint8_t component) {
    const auto found = firmware_.components().find(component);
    return found == firmware_.components().end() ? std::string() : found->second.number;
  };
  maintenance_.SetVersions(firmware_.running().number, number_of(kavel::lidar::kBaseBoardFpga),
                           number_of(kavel::lidar::kTopBoardFpga));
}

void VirtualDevice::PowerUp() {
  start_ = clock_();
  maintenance_.Restart();
}

void VirtualDevice::Restart() {
  PowerUp();
  const size_t ran = firmware_.active();
  firmware_.Restart();
  ShowVersions();
  const auto shown = memory_.TextOf(kVersionVariable);
  if (firmware_.active() == ran || !shown || shown->size() < kNumberAt) {
    return;
  }
  const FirmwareVersion& now = firmware_.running();
  std::string error;
  memory_.Preset(kVersionVariable,
                 now.date + shown->substr(kDateSize, kNumberAt - kDateSize) + now.number, &error);
}

void VirtualDevice::Reset() {
  // The settings go back to what the factory made them; the firmware is no setting.
  const auto version = memory_.TextOf(kVersionVariable);
  memory_.Reset();
  std::string error;
  if (version) {
    memory_.Preset(kVersionVariable, *version, &error);
  }
  maintenance_.Reset();
  SeedMaintenance();
  changed_ = true;
}

// What a table shows and what maintenance commands read is one and the same: each follows the
// other.
void VirtualDevice::SeedMaintenance() {
  maintenance_.SetNumbers(memory_.TextOf("SN").value_or("KV-2024-000042"),
                          memory_.TextOf("PN").value_or("KV-L32-0001"));
  for (const uint8_t command : MaintenanceUnit::kSeedCommands) {
    const auto outcome = memory_.Execute(command, {}, 0);
    if (outcome && outcome->return_code == kAccepted) {
      maintenance_.Seed(command, outcome->payload);
    }
  }
}

void VirtualDevice::MirrorMaintenance() {
  for (const uint8_t command : MaintenanceUnit::kSeedCommands) {
    if (const auto bytes = maintenance_.Read(command, 0)) {
      memory_.StoreReply(command, *bytes);
    }
  }
}

// The commands that every device knows, whatever its table says. Any payload will do.
bool VirtualDevice::RunBuiltIn(const DeviceRequest& request, DeviceReply* reply,
                               std::string* what) {
  switch (request.code) {
    case kavel::lidar::kCmdLiveness:
    case kavel::lidar::kCmdLivenessOld:
      *what = "liveness";
      return true;
    case kavel::lidar::kCmdRestart:
      *what = "restart";
      Restart();
      reply->aftermath = Aftermath::kRestart;
      return true;
    case kavel::lidar::kCmdFactoryReset:
      *what = "reset";
      Reset();
      return true;
    default:
      return false;
  }
}

bool VirtualDevice::RunTableCommand(const DeviceRequest& request, DeviceReply* reply,
                                    std::string* what) {
  auto outcome = memory_.Execute(request.code, request.payload, UpTimeSeconds());
  if (!outcome) {
    return false;
  }
  const bool is_read = !outcome->payload.empty();
  changed_ = changed_ || outcome->measured;
  reply->return_code = outcome->return_code;
  reply->payload = std::move(outcome->payload);
  if (outcome->fields == 0) {
    *what = "unknown selector";
  } else {
    *what = (is_read ? "read of " : "write of ") + std::to_string(outcome->fields) +
            (outcome->fields == 1 ? " variable" : " variables");
  }
  if (outcome->written) {
    changed_ = true;
    SeedMaintenance();
    // A serial line does not depend on the network settings.
    if (request.code == kNetworkSettings && !request.serial_line) {
      reply->aftermath = Aftermath::kHangUpUnanswered;
    }
  }
  return true;
}
