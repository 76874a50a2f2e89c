#include "CmxClient/device_commands.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "Platform/ipv4_text.h"
#include "Wire/big_endian.h"
#include "Wire/calibration.h"

namespace kavel::lidar {
namespace {

constexpr size_t kIpv4Size = 4;
constexpr size_t kDestinationSize = 6;
constexpr size_t kNetConfigSize = 15;
constexpr size_t kSafetyStateSize = 4;
constexpr size_t kStatusSize = 10;

using Bytes = std::vector<uint8_t>;

// The reason of an exchange that failed, never 0: a client reports 0 when the device answered
// another command.
int32_t ReasonOf(int32_t error) { return error == 0 ? kBadReply : error; }

int32_t Ask(CommandSender& sender, uint8_t cmd, const Bytes& payload, Bytes* reply) {
  int32_t error = 0;
  if (sender.QueryCommand(payload, *reply, cmd, false, &error) == 0) {
    return 0;
  }
  return ReasonOf(error);
}

int32_t AskFor(CommandSender& sender, uint8_t cmd, size_t size, Bytes* reply) {
  const int32_t code = Ask(sender, cmd, {}, reply);
  if (code != 0) {
    return code;
  }
  return reply->size() == size ? 0 : kBadReply;
}

int32_t Tell(CommandSender& sender, uint8_t cmd, const Bytes& payload) {
  Bytes reply;
  const int32_t code = Ask(sender, cmd, payload, &reply);
  if (code != 0) {
    return code;
  }
  return reply.empty() ? 0 : kBadReply;
}

bool AppendIpv4(Bytes& payload, const std::string& text) {
  uint8_t octets[kIpv4Size];
  if (!ParseDottedIpv4(text, octets)) {
    return false;
  }
  payload.insert(payload.end(), std::begin(octets), std::end(octets));
  return true;
}

// A fixed field of text, or all of a reply: ends at the first zero byte.
std::string PaddedText(const uint8_t* data, size_t size) {
  return {data, std::find(data, data + size, uint8_t{0})};
}

int32_t AskForText(CommandSender& sender, uint8_t cmd, size_t max_size, std::string* text) {
  Bytes reply;
  const int32_t code = Ask(sender, cmd, {}, &reply);
  if (code != 0) {
    return code;
  }
  if (reply.empty() || reply.size() > max_size) {
    return kBadReply;
  }
  *text = PaddedText(reply.data(), reply.size());
  return 0;
}

}  // namespace

int32_t CheckAlive(CommandSender& sender, uint8_t liveness_cmd) {
  Bytes reply;
  int32_t error = 0;
  const bool accepted = sender.QueryQuietly({}, reply, liveness_cmd, &error) == 0;
  return accepted ? 0 : ReasonOf(error);
}

int32_t RestartDevice(CommandSender& sender) { return Tell(sender, kCmdRestart, {}); }

int32_t GetBaudRate(CommandSender& sender, uint32_t* baud_rate_bps) {
  Bytes reply;
  const int32_t code = AskFor(sender, kCmdGetBaudRate, sizeof(uint32_t), &reply);
  if (code == 0) {
    *baud_rate_bps = ReadBigEndian32(reply.data());
  }
  return code;
}

int32_t SetBaudRate(CommandSender& sender, uint32_t baud_rate_bps) {
  if (baud_rate_bps == 0) {
    return kBadArgument;
  }
  Bytes payload;
  AppendBigEndian32(payload, baud_rate_bps);
  return Tell(sender, kCmdSetBaudRate, payload);
}

int32_t GetDestination(CommandSender& sender, Destination* destination) {
  Bytes reply;
  const int32_t code = AskFor(sender, kCmdGetDestination, kDestinationSize, &reply);
  if (code != 0) {
    return code;
  }
  destination->ip = DottedIpv4(reply.data());
  destination->port = ReadBigEndian16(reply.data() + kIpv4Size);
  return 0;
}

int32_t SetDestination(CommandSender& sender, const Destination& destination) {
  Bytes payload;
  if (!AppendIpv4(payload, destination.ip)) {
    return kBadArgument;
  }
  AppendBigEndian16(payload, destination.port);
  return Tell(sender, kCmdSetDestination, payload);
}

int32_t GetNetConfig(CommandSender& sender, NetConfig* config) {
  Bytes reply;
  const int32_t code = AskFor(sender, kCmdGetNet, kNetConfigSize, &reply);
  if (code != 0) {
    return code;
  }
  const uint8_t* field = reply.data();
  config->ip = DottedIpv4(field);
  config->mask = DottedIpv4(field + kIpv4Size);
  config->gateway = DottedIpv4(field + 2 * kIpv4Size);
  config->vlan = field[3 * kIpv4Size] != 0;
  config->vlan_id = ReadBigEndian16(field + 3 * kIpv4Size + 1);
  return 0;
}

int32_t SetNetConfig(CommandSender& sender, const NetConfig& config) {
  Bytes payload;
  if (!AppendIpv4(payload, config.ip) || !AppendIpv4(payload, config.mask) ||
      !AppendIpv4(payload, config.gateway) || config.vlan_id > kMaxVlanId) {
    return kBadArgument;
  }
  payload.push_back(config.vlan ? 1 : 0);
  AppendBigEndian16(payload, config.vlan_id);
  return Tell(sender, kCmdSetNet, payload);
}

int32_t SetReturnMode(CommandSender& sender, uint8_t return_mode) {
  return Tell(sender, kCmdSetReturnMode, {return_mode});
}

int32_t SetSpinRate(CommandSender& sender, uint16_t spin_rate_rpm) {
  Bytes payload;
  AppendBigEndian16(payload, spin_rate_rpm);
  return Tell(sender, kCmdSetSpinRate, payload);
}

int32_t SetStandby(CommandSender& sender, bool standby) {
  return Tell(sender, kCmdSetStandby, {static_cast<uint8_t>(standby ? 1 : 0)});
}

int32_t SetImuRange(CommandSender& sender, uint8_t angular_range_index, uint8_t accel_range_index) {
  return Tell(sender, kCmdSetImuRange, {angular_range_index, accel_range_index});
}

int32_t GetPblVersion(CommandSender& sender, std::string* version) {
  return AskForText(sender, kCmdGetPblVersion, kNumberTextSize, version);
}

int32_t GetSerialNumber(CommandSender& sender, std::string* number) {
  return AskForText(sender, kCmdGetSerialNumber, kNumberTextSize, number);
}

int32_t GetPartNumber(CommandSender& sender, std::string* number) {
  return AskForText(sender, kCmdGetPartNumber, kNumberTextSize, number);
}

int32_t GetVersions(CommandSender& sender, DeviceVersions* versions) {
  Bytes reply;
  const int32_t code = AskFor(sender, kCmdGetVersions, 3 * kVersionTextSize, &reply);
  if (code != 0) {
    return code;
  }
  versions->firmware = PaddedText(reply.data(), kVersionTextSize);
  versions->fpga_a = PaddedText(reply.data() + kVersionTextSize, kVersionTextSize);
  versions->fpga_b = PaddedText(reply.data() + 2 * kVersionTextSize, kVersionTextSize);
  return 0;
}

int32_t GetFunctionSafety(CommandSender& sender, std::vector<SafetyState>* states) {
  Bytes reply;
  const int32_t code = Ask(sender, kCmdGetFunctionSafety, {}, &reply);
  if (code != 0) {
    return code;
  }
  if (reply.empty() || reply.size() != 1 + reply[0] * kSafetyStateSize) {
    return kBadReply;
  }
  states->clear();
  for (size_t at = 1; at < reply.size(); at += kSafetyStateSize) {
    states->push_back({reply[at], reply[at + 1], ReadBigEndian16(reply.data() + at + 2)});
  }
  return 0;
}

int32_t GetStatus(CommandSender& sender, DeviceStatus* status) {
  Bytes reply;
  const int32_t code = AskFor(sender, kCmdGetStatus, kStatusSize, &reply);
  if (code != 0) {
    return code;
  }
  status->return_mode = reply[0];
  status->spin_rate_rpm = ReadBigEndian16(reply.data() + 1);
  status->standby = reply[3] != 0;
  status->angular_range_index = reply[4];
  status->accel_range_index = reply[5];
  status->up_time_s = ReadBigEndian32(reply.data() + 6);
  return 0;
}

int32_t GetActivePartition(CommandSender& sender, bool* is_b) {
  Bytes reply;
  const int32_t code = AskFor(sender, kCmdGetPartition, 1, &reply);
  if (code != 0) {
    return code;
  }
  if (reply[0] > 1) {
    return kBadReply;
  }
  *is_b = reply[0] == 1;
  return 0;
}

int32_t GetCalibration(CommandSender& sender, Bytes* calibration) {
  Bytes reply;
  const int32_t code = Ask(sender, kCmdGetCalibration, {}, &reply);
  if (code != 0) {
    return code;
  }
  if (!IsCalibration(reply)) {
    return kBadReply;
  }
  *calibration = std::move(reply);
  return 0;
}

bool IsValidNumber(const std::string& number) {
  const auto is_printable = [](char c) { return c >= 0x20 && c <= 0x7E; };
  return !number.empty() && number.size() <= kNumberTextSize &&
         std::all_of(number.begin(), number.end(), is_printable);
}

}  // namespace kavel::lidar
