#include "Wire/serial_stream.h"

#include <algorithm>
#include <cstring>

#include "Wire/big_endian.h"
#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"

namespace kavel::lidar {
namespace {

using Kind = SerialStreamFrame::Kind;

struct KnownPrefix {
  Kind kind;
  const uint8_t* bytes;
};

constexpr KnownPrefix kPrefixes[] = {{Kind::kCommand, kSerialCommandPrefix},
                                     {Kind::kLong, kOtaPrefix},
                                     {Kind::kPointCloud, kPointCloudPrefix}};
static_assert(sizeof(kPointCloudPrefix) == kSerialPrefixSize && kOtaPrefixSize == kSerialPrefixSize,
              "the stream searches for prefixes of one size");

static_assert(kPointCloudTailSize == kSerialChecksumSize + kSerialTerminatorSize,
              "both frames without a random value end alike");
constexpr size_t kPointCloudLengthOffset = 9;

bool IsTerminator(const uint8_t* bytes) {
  return bytes[0] == kSerialTerminator1 && bytes[1] == kSerialTerminator2;
}

bool FirmwareChecksumFits(const std::vector<uint8_t>& frame) {
  const size_t covered = frame.size() - kSerialPrefixSize - kPointCloudTailSize;
  const uint8_t* begin = frame.data() + kSerialPrefixSize;
  return ReadBigEndian32(begin + covered) == SerialChecksum(begin, covered);
}

// A long frame that goes the other way: the line echoes, or two tools share it.
bool IsFromListener(const std::vector<uint8_t>& frame, SerialListener listener) {
  const OtaDirection own =
      listener == SerialListener::kTool ? OtaDirection::kRequest : OtaDirection::kAnswer;
  return OtaDirectionOf(frame) == own;
}

bool CommandFits(const std::vector<uint8_t>& frame, SerialListener listener) {
  std::vector<uint8_t> content;
  if (listener == SerialListener::kTool) {
    return ParseSerialResponse(frame, content);
  }
  uint8_t cmd = 0;
  return ParseSerialRequest(frame, &cmd, &content);
}

}  // namespace

std::vector<uint8_t> BuildPointCloudFrame(const std::vector<uint8_t>& data) {
  if (data.size() > kPointCloudMaxData) {
    return {};
  }
  std::vector<uint8_t> frame(std::begin(kPointCloudPrefix), std::end(kPointCloudPrefix));
  frame.push_back(kPointCloudMajor);
  frame.push_back(kPointCloudMinor);
  AppendBigEndian16(frame, static_cast<uint16_t>(data.size()));
  frame.insert(frame.end(), data.begin(), data.end());
  AppendSerialTail(frame, kSerialTailFirmware);
  return frame;
}

void SerialStream::Append(const uint8_t* data, size_t size) {
  if (size > kMaxHeld) {
    skipped_bytes_ += size - kMaxHeld;
    data += size - kMaxHeld;
    size = kMaxHeld;
  }
  if (held() + size > kMaxHeld) {
    Skip(held() + size - kMaxHeld);
  }
  if (begin_ > 0) {
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(begin_));
    begin_ = 0;
  }
  buffer_.insert(buffer_.end(), data, data + size);
}

void SerialStream::Skip(size_t count) {
  const size_t kept = std::min(count, kMaxSkippedKept - skipped_.size());
  skipped_.insert(skipped_.end(), Head(), Head() + kept);
  begin_ += count;
  skipped_bytes_ += count;
}

SerialStream::Match SerialStream::MatchPrefix(size_t offset, Kind* kind) const {
  const size_t compared = std::min(held() - offset, kSerialPrefixSize);
  for (const KnownPrefix& prefix : kPrefixes) {
    if (std::memcmp(Head() + offset, prefix.bytes, compared) != 0) {
      continue;
    }
    *kind = prefix.kind;
    return compared == kSerialPrefixSize ? Match::kWhole : Match::kBegun;
  }
  return Match::kNone;
}

// Skips to the next prefix. True when it is whole; false when what is left may be the beginning of
// one, or is nothing.
bool SerialStream::FindPrefix(Kind* kind) {
  while (held() > 0) {
    const void* found = std::memchr(Head(), kSerialCommandPrefix[0], held());
    if (found == nullptr) {
      Skip(held());
      return false;
    }
    Skip(static_cast<size_t>(static_cast<const uint8_t*>(found) - Head()));
    const Match match = MatchPrefix(0, kind);
    if (match != Match::kNone) {
      return match == Match::kWhole;
    }
    Skip(1);
  }
  return false;
}

// The size that the frame at the head claims; none until its length field is there; 0 for a length
// that no such frame has.
std::optional<size_t> SerialStream::FrameSize(Kind kind) const {
  switch (kind) {
    case Kind::kCommand: {
      if (held() < kSerialPrefixSize + 1) {
        return std::nullopt;
      }
      const size_t counted = Head()[kSerialPrefixSize];
      if (listener_ == SerialListener::kTool) {
        return kSerialPrefixSize + 2 + counted + kSerialTailSize;
      }
      return counted == 0 ? 0 : kSerialPrefixSize + 1 + counted + kSerialTailSize;
    }
    case Kind::kLong: {
      if (held() < kOtaPrefixSize + 2) {
        return std::nullopt;
      }
      const size_t counted = ReadBigEndian16(Head() + kOtaPrefixSize);
      return counted == 0 ? 0 : counted + kOtaUncounted;
    }
    case Kind::kPointCloud: {
      if (held() < kPointCloudDataOffset) {
        return std::nullopt;
      }
      const size_t counted = ReadBigEndian16(Head() + kPointCloudLengthOffset);
      return counted > kPointCloudMaxData ? 0
                                          : kPointCloudDataOffset + counted + kPointCloudTailSize;
    }
  }
  return 0;
}

SerialStreamFrame SerialStream::CopyFrame(Kind kind, size_t size) const {
  SerialStreamFrame frame;
  frame.kind = kind;
  frame.bytes.assign(Head(), Head() + size);
  frame.sound = kind == Kind::kCommand ? CommandFits(frame.bytes, listener_)
                                       : FirmwareChecksumFits(frame.bytes);
  return frame;
}

bool SerialStream::PrefixInside(size_t size) const {
  Kind kind;
  for (size_t offset = 1; offset + kSerialPrefixSize <= size; ++offset) {
    if (MatchPrefix(offset, &kind) == Match::kWhole) {
      return true;
    }
  }
  return false;
}

std::optional<SerialStreamFrame> SerialStream::Next() {
  Kind kind = Kind::kCommand;
  while (FindPrefix(&kind)) {
    const std::optional<size_t> size = FrameSize(kind);
    if (!size || *size > held()) {
      return std::nullopt;
    }
    // Looked at before anything is copied: noise may claim one long frame after the other.
    if (*size > 0 && IsTerminator(Head() + *size - kSerialTerminatorSize)) {
      SerialStreamFrame frame = CopyFrame(kind, *size);
      if (kind == Kind::kLong && IsFromListener(frame.bytes, listener_)) {
        Skip(*size);
        continue;
      }
      if (frame.sound || (kind != Kind::kPointCloud && !PrefixInside(*size))) {
        begin_ += *size;
        skipped_.clear();
        return frame;
      }
    }
    Skip(1);
  }
  return std::nullopt;
}

bool SerialStream::HoldsPointCloud() const {
  return held() > 0 &&
         std::memcmp(Head(), kPointCloudPrefix, std::min(held(), kSerialPrefixSize)) == 0;
}

std::vector<uint8_t> SerialStream::Rest() const {
  std::vector<uint8_t> rest = skipped_;
  if (!HoldsPointCloud()) {
    rest.insert(rest.end(), Head(), Head() + held());
  }
  return rest;
}

bool SerialStream::GiveUp() {
  if (held() == 0) {
    return false;
  }
  Skip(1);
  return true;
}

size_t SerialStream::PendingLongFrame() const {
  Kind kind = Kind::kCommand;
  if (held() == 0 || MatchPrefix(0, &kind) != Match::kWhole || kind != Kind::kLong) {
    return 0;
  }
  return FrameSize(kind).value_or(0);
}

void SerialStream::Clear() {
  buffer_.clear();
  begin_ = 0;
  skipped_.clear();
  skipped_bytes_ = 0;
}

void SerialStream::ClearToPointCloud() {
  if (!HoldsPointCloud()) {
    begin_ = buffer_.size();
  }
  skipped_.clear();
}

}  // namespace kavel::lidar
