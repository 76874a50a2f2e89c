#include "device/image_intake.h"

#include <algorithm>
#include <utility>

#include "Wire/crc32.h"
#include "wire/message.h"

namespace {

using kavel::lidar::StreamImage;
using Bytes = ImageIntake::Bytes;

constexpr size_t kMostFilePieces = kavel::lidar::kStreamMaxImage / kavel::lidar::kFilePieceDataSize;

// Gives the memory of each piece back as it goes, so that no image is held twice.
Bytes Join(std::map<uint32_t, Bytes>* pieces) {
  Bytes image;
  size_t size = 0;
  for (const auto& [number, data] : *pieces) {
    size += data.size();
  }
  image.reserve(size);
  while (!pieces->empty()) {
    const Bytes& data = pieces->begin()->second;
    image.insert(image.end(), data.begin(), data.end());
    pieces->erase(pieces->begin());
  }
  return image;
}

}  // namespace

uint8_t ImageIntake::TakePiece(const kavel::lidar::FilePiece& piece, uint32_t client,
                               std::optional<FirmwareHeader>* whole) {
  const bool is_last = piece.number == piece.count;
  if (piece.count > kMostFilePieces) {
    return kBadValue;
  }
  if (!is_last && piece.size < kavel::lidar::kFilePieceDataSize) {
    return kBadLength;
  }
  Bytes data(piece.data, piece.data + piece.size);
  if (piece.number == 1) {
    job_.reset();
    if (!IsOurs(data)) {
      return kForeignImage;
    }
    job_.emplace();
    job_->client = client;
    job_->count = piece.count;
  } else if (!IsJobOf(client, false) || job_->count != piece.count) {
    return kOutOfOrder;
  }
  if (piece.number == job_->taken && (job_->verdict || job_->pieces[piece.number] == data)) {
    return job_->verdict.value_or(kAccepted);
  }
  if (piece.number != job_->taken + 1) {
    return kOutOfOrder;
  }
  job_->taken = piece.number;
  job_->pieces[piece.number] = std::move(data);
  if (is_last) {
    Judge(whole);
  }
  return job_->verdict.value_or(kAccepted);
}

uint8_t ImageIntake::BeginStream(const StreamImage& image, uint32_t client) {
  if (std::count(components_.begin(), components_.end(), image.component) == 0) {
    return kBadValue;
  }
  job_.emplace();
  job_->client = client;
  job_->count = kavel::lidar::StreamPieceCount(image.size);
  job_->image = image;
  taken_stream_.reset();
  return kAccepted;
}

uint8_t ImageIntake::TakeStreamPiece(const kavel::lidar::StreamPiece& piece, uint32_t client) {
  if (!IsJobOf(client, true) || job_->verdict || job_->image->component != piece.component) {
    return kOutOfOrder;
  }
  if (piece.number == 0 || piece.number > job_->count) {
    return kBadValue;
  }
  if (piece.size != kavel::lidar::StreamPieceLength(job_->image->size, piece.number)) {
    return kBadLength;
  }
  Bytes data(piece.data, piece.data + piece.size);
  if (piece.number == 1 && !IsOurs(data)) {
    job_.reset();
    return kForeignImage;
  }
  job_->pieces[piece.number] = std::move(data);
  return kAccepted;
}

uint8_t ImageIntake::EndStream(const StreamImage& image, uint32_t client,
                               std::optional<FirmwareHeader>* whole) {
  if (!IsJobOf(client, true)) {
    return kOutOfOrder;
  }
  if (!(*job_->image == image)) {
    return kBadImage;
  }
  if (!job_->verdict) {
    if (job_->pieces.size() < job_->count) {
      // What is missing may still come.
      return kBadImage;
    }
    Judge(whole);
  }
  return *job_->verdict;
}

bool ImageIntake::HasTaken(const StreamImage& image) const {
  return taken_stream_ && *taken_stream_ == image;
}

void ImageIntake::DropStream() {
  if (job_ && job_->image) {
    job_.reset();
  }
}

bool ImageIntake::IsJobOf(uint32_t client, bool streamed) const {
  return job_ && job_->client == client && job_->image.has_value() == streamed;
}

bool ImageIntake::IsOurs(const Bytes& beginning) const {
  const auto header = ReadImageHeader(beginning);
  if (!header || header->model != model_) {
    return false;
  }
  return job_ && job_->image
             ? header->component == job_->image->component
             : std::count(components_.begin(), components_.end(), header->component) != 0;
}

void ImageIntake::Judge(std::optional<FirmwareHeader>* whole) {
  const Bytes image = Join(&job_->pieces);
  const auto& announced = job_->image;
  const bool is_sound =
      IsWholeImage(image) &&
      (!announced || (image.size() == announced->size &&
                      kavel::lidar::Crc32Ieee(image.data(), image.size()) == announced->crc));
  job_->verdict = is_sound ? kAccepted : kBadImage;
  if (is_sound) {
    *whole = ReadImageHeader(image);
    taken_stream_ = announced;
  }
}
