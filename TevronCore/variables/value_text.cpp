#include "variables/value_text.h"

#include <QString>

#include "Platform/ipv4_text.h"
#include "Wire/big_endian.h"
#include "variables/exact_number.h"
#include "variables/number_text.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr size_t kMacSize = 6;
constexpr size_t kAddressSize = 4;
constexpr size_t kVersionSize = 16;
constexpr size_t kLargestCount = 8;

bool Fail(std::string* fault, std::string text) {
  *fault = std::move(text);
  return false;
}

// Bytes as characters; zero bytes at the end are padding.
std::string Characters(const uint8_t* bytes, size_t size) {
  while (size > 0 && bytes[size - 1] == 0) {
    --size;
  }
  return {bytes, bytes + size};
}

std::string JoinedHex(const Bytes& bytes, size_t size) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    if (i > 0) {
      text += ':';
    }
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0xF];
  }
  return text;
}

bool DecodeMac(const Bytes& slice, std::string* text, std::string* fault) {
  if (slice.size() < kMacSize) {
    return Fail(fault, "MAC address size is less than 6, please check your config file");
  }
  *text = JoinedHex(slice, kMacSize);
  return true;
}

bool DecodeAddress(const Bytes& slice, std::string* text, std::string* fault) {
  if (slice.size() < kAddressSize) {
    return Fail(fault, "IP address size is less than 4, please check your config file");
  }
  *text = kavel::lidar::DottedIpv4(slice.data());
  return true;
}

// Nine characters, then major.minor.revision and, when it is not zero, the build.
bool DecodeHardwareVersion(const Bytes& slice, std::string* text, std::string* fault) {
  if (slice.size() != kVersionSize) {
    // "qual" is meant: the wording is fixed, here and below.
    return Fail(fault, "HWVER size is not qual to 16, please check your config file");
  }
  const uint16_t revision = kavel::lidar::ReadBigEndian16(&slice[11]);
  const uint16_t build = kavel::lidar::ReadBigEndian16(&slice[13]);
  *text = Characters(slice.data(), 9) + std::to_string(slice[9]) + '.' + std::to_string(slice[10]) +
          '.' + std::to_string(revision);
  if (build != 0) {
    *text += '.' + std::to_string(build);
  }
  return true;
}

// Twelve characters, then four numbers of one byte each.
bool DecodeSoftwareVersion(const Bytes& slice, std::string* text, std::string* fault) {
  if (slice.size() != kVersionSize) {
    return Fail(fault, "SWVER_YMD size is not qual to 16, please check your config file");
  }
  *text = Characters(slice.data(), 12) + std::to_string(slice[12]);
  for (size_t i = 13; i < kVersionSize; ++i) {
    *text += '.' + std::to_string(slice[i]);
  }
  return true;
}

std::string IntegerText(const VarInfo& var, const Bytes& slice, size_t size) {
  const uint64_t bits = kavel::lidar::ReadBigEndian(slice.data(), size);
  if (var.value_type->is_exact) {
    return ExactText(*var.value_type, bits, var.coefficient);
  }
  const int64_t number = kavel::lidar::SignExtended(bits, size);
  const bool is_signed = var.value_type->is_signed;
  if (var.coefficient == 1.0F) {
    return is_signed ? std::to_string(number) : std::to_string(bits);
  }
  return FixedText((is_signed ? static_cast<double>(number) : static_cast<double>(bits)) *
                   AsWritten(var.coefficient));
}

std::string RealText(const VarInfo& var, const Bytes& slice, size_t size) {
  const uint64_t bits = kavel::lidar::ReadBigEndian(slice.data(), size);
  const double number =
      size == sizeof(double)
          ? kavel::lidar::DoubleOf(bits)
          : static_cast<double>(kavel::lidar::FloatOf(static_cast<uint32_t>(bits)));
  return FixedText(number * AsWritten(var.coefficient));
}

bool DecodeNumber(const VarInfo& var, const Bytes& slice, std::string* text, std::string* fault) {
  const auto size = static_cast<size_t>(var.value_type->size);
  if (slice.size() < size) {
    return Fail(fault, var.var_type.str() + " size is less than " + std::to_string(size) +
                           ", please check your config file");
  }
  *text = var.value_type->kind == ValueKind::kInteger ? IntegerText(var, slice, size)
                                                      : RealText(var, slice, size);
  return true;
}

bool DecodeDuration(const Bytes& slice, std::string* text, std::string* fault) {
  if (slice.size() > kLargestCount) {
    return Fail(fault, "DT size is greater than 8, please check your config file");
  }
  const uint64_t seconds = kavel::lidar::ReadBigEndian(slice.data(), slice.size());
  *text = QString("%1 h %2 min %3 s")
              .arg(seconds / 3600)
              .arg(seconds / 60 % 60)
              .arg(seconds % 60)
              .toStdString();
  return true;
}

}  // namespace

bool DecodeValue(const VarInfo& var, const std::vector<uint8_t>& slice, std::string* text,
                 std::string* fault) {
  if (var.var_name == "MAC") {
    return DecodeMac(slice, text, fault);
  }
  if (var.var_name == "HWVER") {
    return DecodeHardwareVersion(slice, text, fault);
  }
  if (var.var_name == "SWVER_YMD") {
    return DecodeSoftwareVersion(slice, text, fault);
  }
  switch (var.value_type->kind) {
    case ValueKind::kText:
      *text = Characters(slice.data(), slice.size());
      return true;
    case ValueKind::kInteger:
    case ValueKind::kReal:
      return DecodeNumber(var, slice, text, fault);
    case ValueKind::kDuration:
      return DecodeDuration(slice, text, fault);
    case ValueKind::kAddress:
      return DecodeAddress(slice, text, fault);
    case ValueKind::kMac:
      return DecodeMac(slice, text, fault);
    case ValueKind::kRaw:
    case ValueKind::kUnknown:
      break;
  }
  return Fail(fault, "var_type not support: " + var.var_type.str());
}
