#include "Wire/file_piece.h"

#include <algorithm>

#include "Wire/big_endian.h"
#include "Wire/crc32.h"

namespace kavel::lidar {

size_t FilePieceCount(size_t file_size) {
  return file_size / kFilePieceDataSize + (file_size % kFilePieceDataSize == 0 ? 0 : 1);
}

std::vector<uint8_t> BuildFilePiece(const std::vector<uint8_t>& file, size_t number) {
  const size_t start = (number - 1) * kFilePieceDataSize;
  const size_t size = std::min(kFilePieceDataSize, file.size() - start);
  const uint8_t* data = file.data() + start;
  std::vector<uint8_t> piece;
  piece.reserve(kFilePieceHeadSize + size);
  AppendBigEndian32(piece, 0);
  AppendBigEndian32(piece, static_cast<uint32_t>(number));
  AppendBigEndian32(piece, static_cast<uint32_t>(FilePieceCount(file.size())));
  AppendBigEndian32(piece, Crc32Mpeg2(data, size));
  piece.insert(piece.end(), data, data + size);
  return piece;
}

ReturnCode ParseFilePiece(const std::vector<uint8_t>& payload, FilePiece* piece) {
  if (payload.size() <= kFilePieceHeadSize ||
      payload.size() > kFilePieceHeadSize + kFilePieceDataSize) {
    return kBadLength;
  }
  const uint8_t* head = payload.data();
  const FilePiece read = {ReadBigEndian32(head + 4), ReadBigEndian32(head + 8),
                          head + kFilePieceHeadSize, payload.size() - kFilePieceHeadSize};
  if (ReadBigEndian32(head) != 0 || read.number == 0 || read.number > read.count) {
    return kBadValue;
  }
  if (read.number < read.count && read.size != kFilePieceDataSize) {
    return kBadLength;
  }
  if (Crc32Mpeg2(read.data, read.size) != ReadBigEndian32(head + 12)) {
    return kDamagedPiece;
  }
  *piece = read;
  return kAccepted;
}

}  // namespace kavel::lidar
