#include "Wire/firmware_stream.h"

#include <algorithm>

#include "Wire/big_endian.h"
#include "Wire/crc32.h"

namespace kavel::lidar {
namespace {

constexpr size_t kImageHeadSize = 9;  // component, size, checksum
constexpr size_t kPieceHeadSize = 9;  // component, number, checksum

std::vector<uint8_t> Head(uint8_t component, uint32_t number, uint32_t checksum) {
  std::vector<uint8_t> head = {component};
  AppendBigEndian32(head, number);
  AppendBigEndian32(head, checksum);
  return head;
}

StreamImage ReadImage(const std::vector<uint8_t>& payload) {
  return {payload[0], ReadBigEndian32(payload.data() + 1), ReadBigEndian32(payload.data() + 5)};
}

}  // namespace

bool IsStreamable(uint8_t component, size_t image_size) {
  return component <= kTopBoardParameters && image_size > 0 && image_size <= kStreamMaxImage;
}

StreamImage DescribeImage(uint8_t component, const std::vector<uint8_t>& image) {
  return {component, static_cast<uint32_t>(image.size()), Crc32Ieee(image.data(), image.size())};
}

uint32_t StreamPieceCount(size_t image_size) {
  return static_cast<uint32_t>((image_size + kStreamPieceSize - 1) / kStreamPieceSize);
}

size_t StreamPieceLength(size_t image_size, uint32_t number) {
  return std::min(kStreamPieceSize, image_size - (number - 1) * kStreamPieceSize);
}

std::vector<uint8_t> BuildStreamBegin(const StreamImage& image) {
  return Head(image.component, image.size, image.crc);
}

std::vector<uint8_t> BuildStreamPiece(uint8_t component, const std::vector<uint8_t>& image,
                                      uint32_t number) {
  const uint8_t* data = image.data() + (number - 1) * kStreamPieceSize;
  const size_t size = StreamPieceLength(image.size(), number);
  std::vector<uint8_t> piece = Head(component, number, Crc32Mpeg2(data, size));
  piece.insert(piece.end(), data, data + size);
  return piece;
}

std::vector<uint8_t> BuildStreamEnd(const StreamImage& image, AfterImage then) {
  std::vector<uint8_t> end = BuildStreamBegin(image);
  end.push_back(static_cast<uint8_t>(then));
  return end;
}

ReturnCode ParseStreamBegin(const std::vector<uint8_t>& payload, StreamImage* image) {
  if (payload.size() != kImageHeadSize) {
    return kBadLength;
  }
  const StreamImage read = ReadImage(payload);
  if (!IsStreamable(read.component, read.size)) {
    return kBadValue;
  }
  *image = read;
  return kAccepted;
}

ReturnCode ParseStreamPiece(const std::vector<uint8_t>& payload, StreamPiece* piece) {
  if (payload.size() <= kPieceHeadSize || payload.size() > kPieceHeadSize + kStreamPieceSize) {
    return kBadLength;
  }
  const uint8_t* head = payload.data();
  const StreamPiece read = {head[0], ReadBigEndian32(head + 1), head + kPieceHeadSize,
                            payload.size() - kPieceHeadSize};
  if (read.component > kTopBoardParameters || read.number == 0 ||
      read.number > StreamPieceCount(kStreamMaxImage)) {
    return kBadValue;
  }
  if (Crc32Mpeg2(read.data, read.size) != ReadBigEndian32(head + 5)) {
    return kDamagedPiece;
  }
  *piece = read;
  return kAccepted;
}

ReturnCode ParseStreamEnd(const std::vector<uint8_t>& payload, StreamImage* image,
                          AfterImage* then) {
  if (payload.size() != kImageHeadSize + 1) {
    return kBadLength;
  }
  const StreamImage read = ReadImage(payload);
  const uint8_t end = payload.back();
  if (!IsStreamable(read.component, read.size) ||
      end > static_cast<uint8_t>(AfterImage::kRestart)) {
    return kBadValue;
  }
  *image = read;
  *then = static_cast<AfterImage>(end);
  return kAccepted;
}

std::vector<uint8_t> BuildStreamAck(uint32_t number) {
  std::vector<uint8_t> ack;
  AppendBigEndian32(ack, number);
  return ack;
}

bool ParseStreamAck(const std::vector<uint8_t>& payload, uint32_t* number) {
  if (payload.size() != sizeof *number) {
    return false;
  }
  *number = ReadBigEndian32(payload.data());
  return true;
}

}  // namespace kavel::lidar
