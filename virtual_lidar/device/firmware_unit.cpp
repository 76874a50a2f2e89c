#include "device/firmware_unit.h"

#include <algorithm>
#include <tuple>

#include "CmxClient/device_commands.h"
#include "Wire/big_endian.h"

namespace {

using kavel::lidar::ReadBigEndian32;
using kavel::lidar::StreamImage;

constexpr uint8_t kGetPartition = 0x53;
constexpr size_t kFileNumberAt = 4;
constexpr size_t kStreamNumberAt = 1;

std::vector<uint8_t> ComponentsOf(SerialFamily family) {
  if (family == SerialFamily::kKiva) {
    return {kavel::lidar::kTopBoardFpga, kavel::lidar::kBaseBoardFpga,
            kavel::lidar::kApplicationImage, kavel::lidar::kTopBoardParameters};
  }
  return {kavel::lidar::kApplicationImage};
}

// What a fault makes of a piece in place of taking it; nothing when none strikes.
std::optional<std::pair<uint8_t, Aftermath>> StrikePiece(uint8_t command, uint32_t number,
                                                         FaultBox* faults) {
  if (faults->Strike(Fault::kLosePiece, command, number)) {
    return std::pair(kAccepted, Aftermath::kNoAnswer);
  }
  if (faults->Strike(Fault::kCloseAtPiece, command, number)) {
    return std::pair(kAccepted, Aftermath::kHangUpUnanswered);
  }
  if (faults->Strike(Fault::kDieAtPiece, command, number)) {
    return std::pair(kAccepted, Aftermath::kPowerCycle);
  }
  if (faults->Strike(Fault::kRefusePiece, command, number)) {
    return std::pair(kBadValue, Aftermath::kNone);
  }
  if (faults->Strike(Fault::kDamagePiece, command, number)) {
    return std::pair(kDamagedPiece, Aftermath::kNone);
  }
  return std::nullopt;
}

// Nothing when the request carries no piece, or too few bytes for its number.
std::optional<uint32_t> PieceNumber(const DeviceRequest& request, bool is_stream) {
  const size_t at = is_stream ? kStreamNumberAt : kFileNumberAt;
  if (request.payload.size() < at + sizeof(uint32_t) ||
      (is_stream && request.code != kavel::lidar::kCmdStreamPiece)) {
    return std::nullopt;
  }
  return ReadBigEndian32(request.payload.data() + at);
}

}  // namespace

const char* FirmwareComponentName(uint8_t component) {
  switch (component) {
    case kavel::lidar::kTopBoardFpga:
      return "TMB_FPGA";
    case kavel::lidar::kBaseBoardFpga:
      return "BMB_FPGA";
    case kavel::lidar::kTopBoardParameters:
      return "TMB_PARAM";
    default:
      return "application";
  }
}

FirmwareUnit::FirmwareUnit(const std::string& model, SerialFamily family)
    : is_serial_(family != SerialFamily::kNone), intake_(model, ComponentsOf(family)) {
  SetRunning({"2.6.14", "2026-08-14"}, true);
  if (family == SerialFamily::kKiva) {
    components_ = {{kavel::lidar::kTopBoardFpga, {"1.7.5", {}}},
                   {kavel::lidar::kBaseBoardFpga, {"1.8.0", {}}},
                   {kavel::lidar::kTopBoardParameters, {"1.0.0", {}}}};
  }
}

void FirmwareUnit::SetRunning(const FirmwareVersion& version, bool both) {
  partitions_[active_] = version;
  if (both) {
    partitions_[1 - active_] = version;
  }
}

std::optional<DeviceReply> FirmwareUnit::Answer(const DeviceRequest& request, bool upgrade_mode,
                                                FaultBox* faults, std::string* what) {
  const bool is_stream = IsStreamCommand(request);
  const bool is_query = is_serial_ && request.code == kGetPartition;
  if (!is_stream && !is_query && request.code != kavel::lidar::kCmdFirmwarePiece) {
    return std::nullopt;
  }
  *what = "firmware";
  DeviceReply reply;
  reply.code = request.code;
  if (is_query) {
    if (request.payload.empty()) {
      reply.payload = {static_cast<uint8_t>(active_)};
    } else {
      reply.return_code = kBadLength;
    }
    return reply;
  }
  if (const auto number = PieceNumber(request, is_stream)) {
    *what = "firmware piece " + std::to_string(*number);
    if (const auto struck = StrikePiece(request.code, *number, faults)) {
      std::tie(reply.return_code, reply.aftermath) = *struck;
      return reply;
    }
  }
  Verdict verdict = is_stream ? Stream(request, upgrade_mode) : TakePiece(request);
  reply.return_code = verdict.return_code;
  reply.payload = std::move(verdict.payload);
  reply.aftermath = verdict.aftermath;
  return reply;
}

void FirmwareUnit::LeaveUpgradeMode() {
  const bool was_half = half_image();
  intake_.DropStream();
  changed_ = changed_ || was_half != half_image();
}

void FirmwareUnit::PowerCycle() {
  changed_ = changed_ || half_image();
  intake_.Drop();
}

void FirmwareUnit::Restart() {
  PowerCycle();
  changed_ = changed_ || SomethingWaits();
  if (std::exchange(application_waits_, false)) {
    active_ = 1 - active_;
  }
  for (auto& [type, component] : components_) {
    if (component.waiting) {
      component.number = *component.waiting;
      component.waiting.reset();
    }
  }
}

FirmwareUnit::Verdict FirmwareUnit::TakePiece(const DeviceRequest& request) {
  kavel::lidar::FilePiece piece;
  Verdict verdict;
  verdict.return_code = kavel::lidar::ParseFilePiece(request.payload, &piece);
  if (verdict.return_code != kAccepted) {
    return verdict;
  }
  const bool was_half = half_image();
  std::optional<FirmwareHeader> whole;
  verdict.return_code = intake_.TakePiece(piece, request.client, &whole);
  Keep(whole);
  changed_ = changed_ || was_half != half_image();
  return verdict;
}

bool FirmwareUnit::IsStreamCommand(const DeviceRequest& request) const {
  return is_serial_ && request.long_frame && request.code >= kavel::lidar::kCmdStreamBegin &&
         request.code <= kavel::lidar::kCmdStreamEnd;
}

FirmwareUnit::Verdict FirmwareUnit::Stream(const DeviceRequest& request, bool upgrade_mode) {
  if (request.code == kavel::lidar::kCmdStreamEnd) {
    return EndStream(request, upgrade_mode);
  }
  if (!upgrade_mode) {
    return {kNotAllowedNow, {}, Aftermath::kNone};
  }
  if (request.code == kavel::lidar::kCmdStreamBegin) {
    StreamImage image;
    uint8_t return_code = kavel::lidar::ParseStreamBegin(request.payload, &image);
    if (return_code == kAccepted) {
      return_code = intake_.BeginStream(image, request.client);
      changed_ = true;
    }
    return {return_code, {}, Aftermath::kNone};
  }
  kavel::lidar::StreamPiece piece;
  uint8_t return_code = kavel::lidar::ParseStreamPiece(request.payload, &piece);
  if (return_code == kAccepted) {
    return_code = intake_.TakeStreamPiece(piece, request.client);
    changed_ = changed_ || return_code == kForeignImage;
  }
  if (return_code != kAccepted) {
    return {return_code, {}, Aftermath::kNone};
  }
  return {kAccepted, kavel::lidar::BuildStreamAck(piece.number), Aftermath::kNone};
}

FirmwareUnit::Verdict FirmwareUnit::EndStream(const DeviceRequest& request, bool upgrade_mode) {
  StreamImage image;
  auto then = kavel::lidar::AfterImage::kStay;
  const uint8_t refused = kavel::lidar::ParseStreamEnd(request.payload, &image, &then);
  if (refused != kAccepted) {
    return {refused, {}, Aftermath::kNone};
  }
  std::optional<FirmwareHeader> whole;
  Verdict verdict;
  // Meant: a client whose answer was lost asks again, perhaps after the restart that it asked for.
  if (!intake_.HasTaken(image)) {
    verdict.return_code =
        upgrade_mode ? intake_.EndStream(image, request.client, &whole) : uint8_t{kNotAllowedNow};
    Keep(whole);
    changed_ = changed_ || upgrade_mode;
  }
  if (verdict.return_code == kAccepted && then == kavel::lidar::AfterImage::kRestart &&
      SomethingWaits()) {
    verdict.aftermath = Aftermath::kRestart;
  }
  return verdict;
}

bool FirmwareUnit::SomethingWaits() const {
  return application_waits_ || std::any_of(components_.begin(), components_.end(),
                                           [](const auto& c) { return c.second.waiting; });
}

void FirmwareUnit::Keep(const std::optional<FirmwareHeader>& whole) {
  if (!whole) {
    return;
  }
  changed_ = true;
  const auto component = components_.find(whole->component);
  if (component != components_.end()) {
    component->second.waiting = whole->version.number;
    return;
  }
  partitions_[1 - active_] = whole->version;
  application_waits_ = true;
}
