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
constexpr uint32_t kRecordGapMs = 250;
constexpr int kChannels = 16;

// A record of a log: number, time in ms since power-up, source, severity, code, value.
void AppendRecord(Bytes* log, uint32_t number, uint8_t source, uint8_t severity) {
  // Any well-spread bits will do.
  const uint32_t noise = (number + 1) * 2654435761U ^ source * 40503U;
  kavel::lidar::AppendBigEndian32(*log, number);
  kavel::lidar::AppendBigEndian32(*log, number * kRecordGapMs + noise % kRecordGapMs);
  log->push_back(source);
  log->push_back(severity);
  kavel::lidar::AppendBigEndian16(*log, static_cast<uint16_t>(noise >> 24));
  kavel::lidar::AppendBigEndian32(*log, noise);
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
    : family_(family), size_(size) {
  for (const VarInfo* var : OfferedLogs(table, nullptr)) {
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

Bytes LogStore::Content(const DeviceRequest& request, size_t log, uint8_t part) const {
  const uint32_t size = request.serial_line ? std::min(size_, kMaxOnSerialLine) : size_;
  // Warnings are the first two parts of the operation log, errors the others.
  const auto severity = static_cast<uint8_t>(part < kLogParts / 2 ? 1 : 2);
  Bytes bytes;
  bytes.reserve(size + kRecordSize);
  for (uint32_t number = 0; bytes.size() < size; ++number) {
    AppendRecord(&bytes, number, static_cast<uint8_t>(log * kLogParts + part), severity);
  }
  bytes.resize(size);
  return bytes;
}
