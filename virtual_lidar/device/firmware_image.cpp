#include "device/firmware_image.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>
#include <string_view>

#include "Wire/big_endian.h"
#include "Wire/crc32.h"
#include "variables/number_text.h"

namespace {

using kavel::lidar::ReadBigEndian16;
using kavel::lidar::ReadBigEndian32;
using Bytes = std::vector<uint8_t>;

constexpr std::string_view kMagic = "VLIMAGE1";
constexpr size_t kModelAt = 8;
constexpr size_t kVersionAt = 24;
constexpr size_t kVersionSize = 16;
constexpr size_t kDateAt = 40;
constexpr size_t kComponentAt = 44;
constexpr size_t kZerosAt = 45;
constexpr size_t kBodySizeAt = 52;
constexpr size_t kBodyCrcAt = 56;
constexpr size_t kHeaderCrcAt = 60;
constexpr size_t kMostNumbers = 4;

void PutText(const std::string& text, size_t at, size_t room, Bytes* image) {
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(text.size(), room));
  std::copy(text.begin(), end, image->begin() + static_cast<std::ptrdiff_t>(at));
}

std::string TextAt(const Bytes& image, size_t at, size_t room) {
  const auto begin = image.begin() + static_cast<std::ptrdiff_t>(at);
  return {begin, std::find(begin, begin + static_cast<std::ptrdiff_t>(room), uint8_t{0})};
}

// A date of another form than FirmwareVersion's makes an image that no device takes.
void PutDate(const std::string& date, Bytes* image) {
  const auto number = [&date](size_t at, size_t digits) {
    return at + digits <= date.size()
               ? WholeNumber<uint16_t>(std::string_view(date).substr(at, digits)).value_or(0)
               : uint16_t{0};
  };
  const uint16_t year = number(0, 4);
  (*image)[kDateAt] = static_cast<uint8_t>(year >> 8);
  (*image)[kDateAt + 1] = static_cast<uint8_t>(year);
  (*image)[kDateAt + 2] = static_cast<uint8_t>(number(5, 2));
  (*image)[kDateAt + 3] = static_cast<uint8_t>(number(8, 2));
}

bool HasZeros(const Bytes& image, size_t from, size_t to) {
  return std::all_of(image.begin() + static_cast<std::ptrdiff_t>(from),
                     image.begin() + static_cast<std::ptrdiff_t>(to),
                     [](uint8_t byte) { return byte == 0; });
}

// As far as it has to be shown; how many days a month has is nothing to a device.
bool ReadDate(const Bytes& image, std::string* date) {
  const unsigned year = ReadBigEndian16(image.data() + kDateAt);
  const unsigned month = image[kDateAt + 2];
  const unsigned day = image[kDateAt + 3];
  if (year > 9999 || month < 1 || month > 12 || day < 1 || day > 31) {
    return false;
  }
  std::array<char, 32> text = {};
  snprintf(text.data(), text.size(), "%04u-%02u-%02u", year, month, day);
  *date = text.data();
  return true;
}

}  // namespace

bool IsVersionNumber(const std::string& text) {
  if (text.size() > kMaxVersionTextSize) {
    return false;
  }
  size_t numbers = 0;
  size_t at = 0;
  while (at <= text.size()) {
    const size_t dot = std::min(text.find('.', at), text.size());
    if (!WholeNumber<uint8_t>(std::string_view(text).substr(at, dot - at))) {
      return false;
    }
    ++numbers;
    at = dot + 1;
  }
  return numbers <= kMostNumbers;
}

Bytes MakeImage(const FirmwareHeader& header, size_t size) {
  Bytes image(size);
  std::copy(kMagic.begin(), kMagic.end(), image.begin());
  PutText(header.model, kModelAt, kMaxImageModelSize, &image);
  PutText(header.version.number, kVersionAt, kVersionSize, &image);
  PutDate(header.version.date, &image);
  image[kComponentAt] = header.component;
  const size_t body_size = size - kImageHeaderSize;
  // Two versions have to differ in more than their headers, and one has to be the same every time.
  std::mt19937 random(kavel::lidar::Crc32Ieee(image.data(), kZerosAt));
  std::generate(image.begin() + kImageHeaderSize, image.end(),
                [&random] { return static_cast<uint8_t>(random()); });
  uint8_t* const bytes = image.data();
  kavel::lidar::WriteBigEndian32(bytes + kBodySizeAt, static_cast<uint32_t>(body_size));
  kavel::lidar::WriteBigEndian32(bytes + kBodyCrcAt,
                                 kavel::lidar::Crc32Ieee(bytes + kImageHeaderSize, body_size));
  kavel::lidar::WriteBigEndian32(bytes + kHeaderCrcAt,
                                 kavel::lidar::Crc32Ieee(bytes, kHeaderCrcAt));
  return image;
}

std::optional<FirmwareHeader> ReadImageHeader(const Bytes& image) {
  if (image.size() < kImageHeaderSize || !std::equal(kMagic.begin(), kMagic.end(), image.begin()) ||
      ReadBigEndian32(image.data() + kHeaderCrcAt) !=
          kavel::lidar::Crc32Ieee(image.data(), kHeaderCrcAt)) {
    return std::nullopt;
  }
  FirmwareHeader header;
  header.model = TextAt(image, kModelAt, kMaxImageModelSize);
  header.version.number = TextAt(image, kVersionAt, kVersionSize);
  header.component = image[kComponentAt];
  const bool is_padded = HasZeros(image, kModelAt + header.model.size(), kVersionAt) &&
                         HasZeros(image, kVersionAt + header.version.number.size(), kDateAt) &&
                         HasZeros(image, kZerosAt, kBodySizeAt);
  const bool is_sound =
      is_padded && ReadDate(image, &header.version.date) && IsVersionNumber(header.version.number);
  return is_sound ? std::optional(header) : std::nullopt;
}

bool IsWholeImage(const Bytes& image) {
  const size_t body_size = image.size() - kImageHeaderSize;
  return ReadBigEndian32(image.data() + kBodySizeAt) == body_size &&
         ReadBigEndian32(image.data() + kBodyCrcAt) ==
             kavel::lidar::Crc32Ieee(image.data() + kImageHeaderSize, body_size);
}
