#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Wire/file_piece.h"
#include "Wire/firmware_stream.h"
#include "device/firmware_image.h"

/// An image on its way in.
struct ImageJob {
  uint32_t client = 0;
  uint32_t count = 0;                              ///< of pieces
  std::optional<kavel::lidar::StreamImage> image;  ///< what was announced, when it is streamed
  std::map<uint32_t, std::vector<uint8_t>> pieces;
  uint32_t taken = 0;              ///< number of the last piece in order
  std::optional<uint8_t> verdict;  ///< return code about the whole; the pieces are gone then
};

/// The one image that may be on its way in, and by which way: as numbered pieces one after the
/// other, or streamed over a serial line in any order. An image belongs to the client that began
/// it; beginning another one drops it. Holds the pieces that came, never more than 64 MiB,
/// and nothing for those that were only announced.
class ImageIntake {
 public:
  using Bytes = std::vector<uint8_t>;

  /// Takes images of this model and these component types.
  ImageIntake(std::string model, std::vector<uint8_t> components)
      : model_(std::move(model)), components_(std::move(components)) {}

  /// Each returns the return code of the answer. *whole gets the header of an image that has just
  /// turned out to be whole and sound.
  /// Piece 1 begins anew; the piece taken last may come again.
  uint8_t TakePiece(const kavel::lidar::FilePiece& piece, uint32_t client,
                    std::optional<FirmwareHeader>* whole);
  uint8_t BeginStream(const kavel::lidar::StreamImage& image, uint32_t client);
  uint8_t TakeStreamPiece(const kavel::lidar::StreamPiece& piece, uint32_t client);
  /// Judges the image as soon as all its pieces are there; asked again, it says the same again.
  uint8_t EndStream(const kavel::lidar::StreamImage& image, uint32_t client,
                    std::optional<FirmwareHeader>* whole);

  /// True when the last image taken was streamed and is this one, even after a restart: its client
  /// may have missed the answer.
  bool HasTaken(const kavel::lidar::StreamImage& image) const;

  /// Part of an image is there, or at least its announcement.
  bool is_half() const { return job_ && !job_->verdict; }
  /// Drops the half image.
  void Drop() { job_.reset(); }
  /// Drops it if it is being streamed.
  void DropStream();

 private:
  bool IsJobOf(uint32_t client, bool streamed) const;
  bool IsOurs(const Bytes& beginning) const;
  void Judge(std::optional<FirmwareHeader>* whole);

  std::string model_;
  std::vector<uint8_t> components_;
  std::optional<ImageJob> job_;
  std::optional<kavel::lidar::StreamImage> taken_stream_;
};
