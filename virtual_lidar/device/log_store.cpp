#include "device/log_store.h"

#include <algorithm>
#include <stdexcept>

#include "CmxClient/device_commands.h"
#include "Wire/big_endian.h"
#include "Wire/calibration.h"
#include "variables/command_code.h"
#include "variables/log_variables.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint8_t kLogParts = 4;
constexpr size_t kRecordSize = 16;
constexpr size_t kSourceAt = 8;
constexpr uint32_t kRecordGapMs = 250;
constexpr int kChannels = 16;

// Records of number, time in ms since power-up, source, severity, code, value; source and severity
// are left at zero.
Bytes Records(size_t size) {
  Bytes log((size + kRecordSize - 1) / kRecordSize * kRecordSize);
  uint32_t number = 0;
  for (size_t at = 0; at < log.size(); at += kRecordSize, ++number) {
    uint8_t* record = log.data() + at;
    // Any well-spread bits will do.
    const uint32_t noise = (number + 1) * 2654435761U;
    kavel::lidar::WriteBigEndian32(record, number);
    kavel::lidar::WriteBigEndian32(record + 4, number * kRecordGapMs + noise % kRecordGapMs);
    kavel::lidar::WriteBigEndian32(record + kSourceAt, noise >> 24);
    kavel::lidar::WriteBigEndian32(record + 12, noise);
  }
  log.resize(size);
  return log;
}

Bytes Calibration() {
  std::vector<kavel::lidar::ChannelAngles> channels;
  channels.reserve(kChannels);
  for (int channel = 0; channel < kChannels; ++channel) {
    // 2 degrees apart from -15 to 15, and as far from it as a factory gets.
    channels.push_back({static_cast<int16_t>(channel * 200 - 1500 + channel * 7 % 11 - 5),
                        static_cast<int16_t>(channel % 4 * 40 - 60)});
  }
  return kavel::lidar::BuildCalibration(channels);
}

bool StartsWith(const Bytes& bytes, const Bytes& head) {
  return bytes.size() >= head.size() && std::equal(head.begin(), head.end(), bytes.begin());
}

}  // namespace

LogStore::LogStore(const ConfigParser& table, SerialFamily family, uint32_t size)
    : family_(family), records_(Records(size)) {
  for (const VarInfo* var : OfferedLogs(table)) {
    Offer(*var, false);
  }
  if (const VarInfo* var = table.FindByName(kConfigFile)) {
    Offer(*var, false);
  }
  if (const VarInfo* var = table.FindByName(kOperationLog)) {
    Offer(*var, true);
  }
}

void LogStore::Offer(const VarInfo& var, bool in_parts) {
  try {
    logs_.push_back({DownloadRequestOf(var, var.var_name).payload, in_parts, var.var_name});
  } catch (const std::logic_error&) {
    // It cannot be asked for.
  }
}

std::optional<DeviceReply> LogStore::Answer(const DeviceRequest& request, std::string* what) const {
  DeviceReply reply;
  reply.code = request.code;
  if (request.code == kavel::lidar::kCmdGetCalibration && family_ == SerialFamily::kLumo) {
    *what = "calibration";
    if (request.payload.empty()) {
      reply.payload = Calibration();
    } else {
      reply.return_code = kBadLength;
    }
    return reply;
  }
  if (request.code != kLongCommandCode) {
    return std::nullopt;
  }
  for (size_t log = 0; log < logs_.size(); ++log) {
    const Bytes& head = logs_[log].request;
    const size_t part_size = logs_[log].in_parts ? 1 : 0;
    if (!StartsWith(request.payload, head) || request.payload.size() > head.size() + 1) {
      continue;
    }
    *what = logs_[log].name;
    if (request.payload.size() != head.size() + part_size) {
      reply.return_code = kBadLength;
      return reply;
    }
    const uint8_t part = part_size == 0 ? 0 : request.payload.back();
    if (part >= kLogParts) {
      reply.return_code = kBadValue;
      return reply;
    }
    reply.payload = Content(request, log, part);
    return reply;
  }
  return std::nullopt;
}

// A client waits half a second for the head of even the longest log.
Bytes LogStore::Content(const DeviceRequest& request, size_t log, uint8_t part) const {
  const size_t most = request.serial_line ? kMaxOnSerialLine : kMaxSize;
  const auto size = static_cast<std::ptrdiff_t>(std::min(records_.size(), most));
  Bytes bytes(records_.begin(), records_.begin() + size);
  for (size_t at = kSourceAt; at + 1 < bytes.size(); at += kRecordSize) {
    bytes[at] = static_cast<uint8_t>(log * kLogParts + part);
    // Warnings are the first two parts of the operation log, errors the others.
    bytes[at + 1] = part < kLogParts / 2 ? 1 : 2;
  }
  return bytes;
}
