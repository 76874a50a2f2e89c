#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kavel::lidar {

/// Point-cloud frames on the serial line: prefix "$LDPTC,", version (two bytes), 16-bit big-endian
/// data length, data, and the tail of mode 2. The layout is in docs/wire-formats.md ("Serial
/// stream").
inline constexpr uint8_t kPointCloudPrefix[] = {'$', 'L', 'D', 'P', 'T', 'C', ','};
inline constexpr uint8_t kPointCloudMajor = 1;
inline constexpr uint8_t kPointCloudMinor = 0;
inline constexpr size_t kPointCloudDataOffset = 11;
inline constexpr size_t kPointCloudMaxData = 1400;
inline constexpr size_t kPointCloudTailSize = 6;

/// Device side: a point-cloud frame; empty when `data` is longer than kPointCloudMaxData.
std::vector<uint8_t> BuildPointCloudFrame(const std::vector<uint8_t>& data);

/// Who listens: the length byte of a "$LDCMD," frame counts differently in the two directions.
enum class SerialListener { kTool, kDevice };

/// One frame cut out of the stream.
struct SerialStreamFrame {
  enum class Kind { kCommand, kLong, kPointCloud };
  Kind kind = Kind::kCommand;
  bool sound = false;  ///< its checksum fits
  std::vector<uint8_t> bytes;
};

/// Finds the frames in a stream of bytes that may be split, joined or mixed with noise.
///
/// A frame is handed out when it is complete and its terminator and checksum fit. When they do not,
/// the search goes on inside it, one byte behind its beginning, since its length may be what was
/// damaged. What the line echoes is skipped: no frame is handed out to the side that sends its
/// kind. Never holds more than kMaxHeld bytes. Not thread-safe.
class SerialStream {
 public:
  /// Room for the longest frame and for what came with it.
  static constexpr size_t kMaxHeld = size_t{128} * 1024;
  static constexpr size_t kMaxSkippedKept = 1500;

  explicit SerialStream(SerialListener listener) : listener_(listener) {}

  void Append(const uint8_t* data, size_t size);

  /// The next frame, or none when more bytes are needed. A command frame with a right terminator
  /// and a wrong checksum, with no other frame beginning inside it, is handed out as not sound.
  std::optional<SerialStreamFrame> Next();

  /// What came and belongs to no complete frame: bytes skipped since the last frame or clearing
  /// (the first kMaxSkippedKept of them) and bytes held, unless these are a point-cloud frame.
  std::vector<uint8_t> Rest() const;

  /// Gives up the frame that has begun, so that Next searches behind its beginning. For use when
  /// the line has gone silent. False when nothing is held.
  bool GiveUp();

  /// Size of the long frame that has begun and is not complete, 0 when there is none.
  size_t PendingLongFrame() const;

  size_t held() const { return buffer_.size() - begin_; }
  uint64_t skipped_bytes() const { return skipped_bytes_; }
  /// Forgets all bytes and the count of those skipped.
  void Clear();
  /// Forgets everything but a point-cloud frame that has begun.
  void ClearToPointCloud();

 private:
  using Kind = SerialStreamFrame::Kind;
  enum class Match { kNone, kBegun, kWhole };

  const uint8_t* Head() const { return buffer_.data() + begin_; }
  Match MatchPrefix(size_t offset, Kind* kind) const;
  bool FindPrefix(Kind* kind);
  std::optional<size_t> FrameSize(Kind kind) const;
  SerialStreamFrame CopyFrame(Kind kind, size_t size) const;
  bool PrefixInside(size_t size) const;
  void Skip(size_t count);
  bool HoldsPointCloud() const;

  SerialListener listener_;
  std::vector<uint8_t> buffer_;
  size_t begin_ = 0;
  std::vector<uint8_t> skipped_;
  uint64_t skipped_bytes_ = 0;
};

}  // namespace kavel::lidar
