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

/// Device side: a point-cloud frame; empty when `data` is longer than kPointCloudMaxData.
std::vector<uint8_t> BuildPointCloudFrame(const std::vector<uint8_t>& data);

/// Who listens: the length byte of a "$LDCMD," frame counts differently in the two directions.
enum class SerialListener { kTool, kDevice };

/// One frame cut out of the stream.
struct SerialStreamFrame {
  enum class Kind { kCommand, kLong, kPointCloud };
  Kind kind = Kind::kCommand;
  bool sound = false;  ///< its checksum fits; false only for the last frame before a silence
  std::vector<uint8_t> bytes;
};

/// Finds the frames in a stream of bytes that may be split, joined or mixed with noise.
///
/// A frame is handed out when it is complete and its terminator and checksum fit. When they do not,
/// the search goes on inside it, one byte behind its beginning, since its length may be what was
/// damaged. Never holds more than kMaxHeld bytes. Not thread-safe.
class SerialStream {
 public:
  /// Room for the longest frame and for what came with it.
  static constexpr size_t kMaxHeld = 128 * 1024;

  explicit SerialStream(SerialListener listener) : listener_(listener) {}

  void Append(const uint8_t* data, size_t size);

  /// The next frame, or none when more bytes are needed. A command frame with a right terminator
  /// and a wrong checksum, with no other frame beginning inside it, is handed out as not sound.
  std::optional<SerialStreamFrame> Next();

  /// Everything held, as it came, and forgets it: what is left when no frame was completed.
  std::vector<uint8_t> TakeRest();

  /// Size of the long frame that has begun and is not complete, 0 when there is none.
  size_t PendingLongFrame() const;

  size_t held() const { return buffer_.size() - begin_; }
  uint64_t skipped_bytes() const { return skipped_bytes_; }
  void Clear();
  void ResetCounters() { skipped_bytes_ = 0; }

 private:
  SerialListener listener_;
  std::vector<uint8_t> buffer_;
  size_t begin_ = 0;
  uint64_t skipped_bytes_ = 0;
};

}  // namespace kavel::lidar
