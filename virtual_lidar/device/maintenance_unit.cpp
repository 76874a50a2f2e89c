#include "device/maintenance_unit.h"

#include <algorithm>
#include <utility>

#include "CmxClient/device_commands.h"
#include "Wire/big_endian.h"
#include "Wire/firmware_stream.h"

namespace {

using kavel::lidar::AppendBigEndian16;
using kavel::lidar::AppendBigEndian32;
using kavel::lidar::ReadBigEndian16;
using kavel::lidar::ReadBigEndian32;
using Bytes = std::vector<uint8_t>;

constexpr uint8_t kSwitchMode = 3;
constexpr uint8_t kHighestMode = 2;
constexpr uint8_t kHighestReturnMode = 5;
constexpr uint16_t kLowestSpinRpm = 300;
constexpr uint16_t kHighestSpinRpm = 1200;
constexpr uint8_t kHighestAngularRange = 5;
constexpr uint8_t kHighestAccelRange = 3;
constexpr uint32_t kLowestBaud = 9600;
constexpr uint32_t kHighestBaud = 12500000;
constexpr size_t kNetSize = 15;

Bytes PaddedText(const std::string& text, size_t size) {
  Bytes bytes(text.begin(),
              text.begin() + static_cast<std::ptrdiff_t>(std::min(text.size(), size)));
  bytes.resize(size);
  return bytes;
}

// Of a setter that takes one number of a fixed width.
template <typename Number>
uint8_t Store(Number* place, uint32_t value, uint32_t lowest, uint32_t highest) {
  if (value < lowest || value > highest) {
    return kBadValue;
  }
  *place = static_cast<Number>(value);
  return kAccepted;
}

std::optional<size_t> SetterSize(uint8_t command) {
  switch (command) {
    case kavel::lidar::kCmdSetBaudRate:
      return 4;
    case kavel::lidar::kCmdSetDestination:
      return 6;
    case kavel::lidar::kCmdSetNet:
      return kNetSize;
    case kavel::lidar::kCmdSetReturnMode:
    case kavel::lidar::kCmdSetStandby:
      return 1;
    case kavel::lidar::kCmdSetSpinRate:
    case kavel::lidar::kCmdSetImuRange:
      return 2;
    default:
      return std::nullopt;
  }
}

// A mask is a run of ones followed by zeros only.
bool IsNetMask(uint32_t mask) {
  const uint32_t host_part = ~mask;
  return (host_part & (host_part + 1)) == 0;
}

}  // namespace

void MaintenanceUnit::SetNumbers(std::string serial_number, std::string part_number) {
  serial_number_ = std::move(serial_number);
  part_number_ = std::move(part_number);
}

void MaintenanceUnit::SetVersions(std::string firmware, std::string base_fpga,
                                  std::string top_fpga) {
  firmware_ = std::move(firmware);
  base_fpga_ = std::move(base_fpga);
  top_fpga_ = std::move(top_fpga);
}

std::optional<DeviceReply> MaintenanceUnit::Answer(const DeviceRequest& request,
                                                   uint32_t up_time_s) {
  if (!enabled()) {
    return std::nullopt;
  }
  if (request.code == kSwitchMode) {
    return SwitchMode(request);
  }
  DeviceReply reply;
  reply.code = request.code;
  if (auto payload = Read(request.code, up_time_s)) {
    if (request.payload.empty()) {
      reply.payload = std::move(*payload);
    } else {
      reply.return_code = kBadLength;
    }
    return reply;
  }
  const std::optional<uint8_t> return_code = Write(request.code, request.payload);
  if (!return_code) {
    return std::nullopt;
  }
  reply.return_code = *return_code;
  return reply;
}

void MaintenanceUnit::Seed(uint8_t command, const Bytes& answer) {
  const auto now = Read(command, 0);
  if (!now || now->size() != answer.size()) {
    return;
  }
  switch (command) {
    case kavel::lidar::kCmdGetBaudRate:
      state_.baud_rate_bps = ReadBigEndian32(answer.data());
      break;
    case kavel::lidar::kCmdGetDestination:
      state_.destination = answer;
      break;
    case kavel::lidar::kCmdGetNet:
      state_.net = answer;
      break;
    case kavel::lidar::kCmdGetStatus:
      state_.return_mode = answer[0];
      state_.spin_rate_rpm = ReadBigEndian16(answer.data() + 1);
      state_.standby = answer[3];
      state_.angular_range_index = answer[4];
      state_.accel_range_index = answer[5];
      break;
    default:
      break;
  }
}

bool MaintenanceUnit::in_upgrade_mode() const {
  return enabled() && state_.mode == kavel::lidar::kUpgradeMode &&
         state_.sub_mode == kavel::lidar::kNoSubMode;
}

void MaintenanceUnit::Restart() { state_.mode = state_.sub_mode = 0; }

std::optional<Bytes> MaintenanceUnit::Read(uint8_t command, uint32_t up_time_s) const {
  if (!enabled()) {
    return std::nullopt;
  }
  Bytes bytes;
  switch (command) {
    case kavel::lidar::kCmdGetBaudRate:
      AppendBigEndian32(bytes, state_.baud_rate_bps);
      return bytes;
    case kavel::lidar::kCmdGetDestination:
      return state_.destination;
    case kavel::lidar::kCmdGetNet:
      return state_.net;
    case kavel::lidar::kCmdGetPblVersion:
      return PaddedText("PBL 1.4.2", kavel::lidar::kVersionTextSize);
    case kavel::lidar::kCmdGetSerialNumber:
      return PaddedText(serial_number_, kavel::lidar::kNumberTextSize);
    case kavel::lidar::kCmdGetPartNumber:
      return PaddedText(part_number_, kavel::lidar::kNumberTextSize);
    case kavel::lidar::kCmdGetVersions:
      return Versions();
    case kavel::lidar::kCmdGetFunctionSafety:
      // Three safety functions; the second one reports a fault, so that a screen has one to show.
      return Bytes{3, 1, 0, 0, 0, 2, 1, 0x01, 0x2C, 3, 0, 0, 0};
    case kavel::lidar::kCmdGetStatus:
      bytes.push_back(state_.return_mode);
      AppendBigEndian16(bytes, state_.spin_rate_rpm);
      bytes.insert(bytes.end(),
                   {state_.standby, state_.angular_range_index, state_.accel_range_index});
      AppendBigEndian32(bytes, up_time_s);
      return bytes;
    default:
      return std::nullopt;
  }
}

std::optional<uint8_t> MaintenanceUnit::Write(uint8_t command, const Bytes& payload) {
  const std::optional<size_t> size = SetterSize(command);
  if (!size) {
    return std::nullopt;
  }
  if (payload.size() != *size) {
    return kBadLength;
  }
  // Settings are for work mode: in any other the device is busy with its firmware.
  if (state_.mode != 0) {
    return kNotAllowedNow;
  }
  switch (command) {
    case kavel::lidar::kCmdSetBaudRate:
      return Store(&state_.baud_rate_bps, ReadBigEndian32(payload.data()), kLowestBaud,
                   kHighestBaud);
    case kavel::lidar::kCmdSetDestination:
      if (ReadBigEndian16(payload.data() + 4) == 0) {
        return kBadValue;
      }
      state_.destination = payload;
      return kAccepted;
    case kavel::lidar::kCmdSetNet:
      return WriteNet(payload);
    case kavel::lidar::kCmdSetReturnMode:
      return Store(&state_.return_mode, payload[0], 0, kHighestReturnMode);
    case kavel::lidar::kCmdSetStandby:
      return Store(&state_.standby, payload[0], 0, 1);
    case kavel::lidar::kCmdSetSpinRate:
      return Store(&state_.spin_rate_rpm, ReadBigEndian16(payload.data()), kLowestSpinRpm,
                   kHighestSpinRpm);
    default:  // kCmdSetImuRange
      if (payload[0] > kHighestAngularRange || payload[1] > kHighestAccelRange) {
        return kBadValue;
      }
      state_.angular_range_index = payload[0];
      state_.accel_range_index = payload[1];
      return kAccepted;
  }
}

uint8_t MaintenanceUnit::WriteNet(const Bytes& payload) {
  const uint8_t vlan = payload[12];
  const uint16_t vlan_id = ReadBigEndian16(payload.data() + 13);
  if (!IsNetMask(ReadBigEndian32(payload.data() + 4)) || vlan > 1 ||
      vlan_id > kavel::lidar::kMaxVlanId) {
    return kBadValue;
  }
  state_.net = payload;
  return kAccepted;
}

Bytes MaintenanceUnit::Versions() const {
  const bool kiva = family_ == SerialFamily::kKiva;
  Bytes bytes = PaddedText(firmware_, kavel::lidar::kVersionTextSize);
  for (const std::string& text : {kiva ? "BMB " + base_fpga_ : std::string("JB 3.0.1"),
                                  kiva ? "TMB " + top_fpga_ : std::string()}) {
    const Bytes padded = PaddedText(text, kavel::lidar::kVersionTextSize);
    bytes.insert(bytes.end(), padded.begin(), padded.end());
  }
  return bytes;
}

// The answer to a mode switch has the mode where other answers have their return code, then the
// sub-mode and a status.
DeviceReply MaintenanceUnit::SwitchMode(const DeviceRequest& request) {
  DeviceReply reply;
  reply.code = request.code;
  if (request.payload.size() != 2) {
    reply.return_code = 0xFF;
    reply.payload = {0xFF, kBadLength};
    return reply;
  }
  const uint8_t mode = request.payload[0];
  const uint8_t sub_mode = request.payload[1];
  const bool known = mode <= kHighestMode;
  if (known) {
    state_.mode = mode;
    state_.sub_mode = sub_mode;
  }
  reply.return_code = mode;
  reply.payload = {sub_mode, known ? kAccepted : kBadValue};
  return reply;
}
