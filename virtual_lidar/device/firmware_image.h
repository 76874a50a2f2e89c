#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Firmware images as this device takes them: a header of 64 bytes, then a body of any bytes. The
/// layout is in docs/virtual-lidar.md ("Firmware"). Everything here is pure, works for any bytes,
/// and may be called on any thread.

inline constexpr size_t kImageHeaderSize = 64;
inline constexpr size_t kMaxImageModelSize = 16;
inline constexpr size_t kMaxVersionTextSize = 15;

struct FirmwareVersion {
  std::string number;  ///< "2.8.0"
  std::string date;    ///< of the build, "2026-11-21"
};

struct FirmwareHeader {
  std::string model;
  FirmwareVersion version;
  uint8_t component = 0;  ///< type of the component, as on the wire
};

/// One to four numbers from 0 to 255 with dots between them, as the devices can show them.
bool IsVersionNumber(const std::string& text);

/// An image of `size` bytes, at least kImageHeaderSize, whose body is the same for the same header.
/// Texts that are too long are cut off.
std::vector<uint8_t> MakeImage(const FirmwareHeader& header, size_t size);

/// Reads the header at the beginning of an image, of which the rest may be missing.
/// Returns nothing when the bytes are the beginning of no image: another magic, a wrong checksum,
/// something else than zeros where zeros belong, no version or no date.
std::optional<FirmwareHeader> ReadImageHeader(const std::vector<uint8_t>& image);

/// Whether length and checksum of the body are those that the header tells. Only for images whose
/// header can be read.
bool IsWholeImage(const std::vector<uint8_t>& image);
