#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Wire/return_code.h"

/// The payloads in which a file travels over a network connection. The layout is in
/// docs/wire-formats.md ("File pieces"). Everything here is pure and may be called on any thread.
namespace kavel::lidar {

/// The command of the pieces of a firmware image, unless a table says otherwise.
inline constexpr uint8_t kCmdFirmwarePiece = 0x83;

/// A file piece carries at most this many bytes of the file behind a head of `kFilePieceHeadSize`.
inline constexpr size_t kFilePieceDataSize = 1024;
inline constexpr size_t kFilePieceHeadSize = 16;

/// How many pieces a file of so many bytes makes; 0 for an empty one.
size_t FilePieceCount(size_t file_size);

/// The payload of piece `number`, from 1 to FilePieceCount(file.size()).
std::vector<uint8_t> BuildFilePiece(const std::vector<uint8_t>& file, size_t number);

/// A received piece. `data` points into the payload that it was read from.
struct FilePiece {
  uint32_t number = 0;
  uint32_t count = 0;
  const uint8_t* data = nullptr;
  size_t size = 0;
};

/// Device side: kAccepted with the piece; kBadLength for a payload that no piece has, kBadValue for
/// a number outside 1 to count or other than zero in front, kDamagedPiece when the checksum does
/// not fit.
ReturnCode ParseFilePiece(const std::vector<uint8_t>& payload, FilePiece* piece);

}  // namespace kavel::lidar
