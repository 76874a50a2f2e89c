#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Wire/return_code.h"

/// A firmware image on the serial line: announced, sent in numbered pieces and closed, all in
/// "$LDOTA," frames (Wire/ota_stream.h). Here are the payloads of both directions; the layouts are
/// in docs/wire-formats.md ("Firmware stream"). Everything is pure and may be called on any thread.
namespace kavel::lidar {

inline constexpr uint8_t kCmdStreamBegin = 0x50;
inline constexpr uint8_t kCmdStreamPiece = 0x51;
inline constexpr uint8_t kCmdStreamEnd = 0x52;

/// What SwitchMode is given before a stream; sub-mode kNoSubMode. kWorkMode leads back.
inline constexpr uint8_t kWorkMode = 0;
inline constexpr uint8_t kUpgradeMode = 1;
inline constexpr uint8_t kNoSubMode = 0;

inline constexpr size_t kStreamPieceSize = 4096;
inline constexpr size_t kStreamMaxImage = size_t{64} * 1024 * 1024;

/// What an image is for.
enum FirmwareComponent : uint8_t {
  kTopBoardFpga = 0,        ///< TMB_FPGA
  kBaseBoardFpga = 1,       ///< BMB_FPGA
  kApplicationImage = 2,    ///< for the partition that is not active
  kTopBoardParameters = 3,  ///< TMB_PARAM
};

/// What the device does once the image is taken.
enum class AfterImage : uint8_t { kStay = 0, kRestart = 1 };

/// What the first and the last frame say of an image. `crc` is its CRC-32 of IEEE 802.3.
struct StreamImage {
  uint8_t component = 0;
  uint32_t size = 0;
  uint32_t crc = 0;
  bool operator==(const StreamImage& other) const {
    return component == other.component && size == other.size && crc == other.crc;
  }
};

/// True for a component of the list above and 1 to kStreamMaxImage bytes.
bool IsStreamable(uint8_t component, size_t image_size);

StreamImage DescribeImage(uint8_t component, const std::vector<uint8_t>& image);

/// How many pieces an image makes, and how many bytes piece `number` (from 1) has: every one
/// kStreamPieceSize, the last one what is left.
uint32_t StreamPieceCount(size_t image_size);
size_t StreamPieceLength(size_t image_size, uint32_t number);

/// Request payloads. `number` is from 1 to StreamPieceCount(image.size()).
std::vector<uint8_t> BuildStreamBegin(const StreamImage& image);
std::vector<uint8_t> BuildStreamPiece(uint8_t component, const std::vector<uint8_t>& image,
                                      uint32_t number);
std::vector<uint8_t> BuildStreamEnd(const StreamImage& image, AfterImage then);

/// A received piece. `data` points into the payload that it was read from.
struct StreamPiece {
  uint8_t component = 0;
  uint32_t number = 0;
  const uint8_t* data = nullptr;
  size_t size = 0;
};

/// Device side. kAccepted with the results, else what the device answers, with the results
/// untouched: kBadLength for a payload of another length, kBadValue for an unknown component, a
/// size or number that no image has, or an unknown end, kDamagedPiece when a piece's checksum does
/// not fit. Whether a piece has the length that its image wants is for the device to judge.
ReturnCode ParseStreamBegin(const std::vector<uint8_t>& payload, StreamImage* image);
ReturnCode ParseStreamPiece(const std::vector<uint8_t>& payload, StreamPiece* piece);
ReturnCode ParseStreamEnd(const std::vector<uint8_t>& payload, StreamImage* image,
                          AfterImage* then);

/// The answer to a piece that was taken: its number. The other answers have no payload.
std::vector<uint8_t> BuildStreamAck(uint32_t number);
/// False, with the result untouched, for a payload of another length.
bool ParseStreamAck(const std::vector<uint8_t>& payload, uint32_t* number);

}  // namespace kavel::lidar
