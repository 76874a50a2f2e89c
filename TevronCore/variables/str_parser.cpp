#include "variables/str_parser.h"

#include <QString>
#include <QStringList>
#include <array>
#include <cmath>
#include <iostream>
#include <stdexcept>
#include <string_view>

#include "Wire/big_endian.h"
#include "variables/exact_number.h"
#include "variables/number_text.h"

namespace {

[[noreturn]] void Refuse(const std::string& message) { throw std::invalid_argument(message); }

// A single-precision number or else a whole one, as the fields of the screens read them.
void CheckNumber(const std::string& parser, const std::string& text) {
  const QString number = QString::fromStdString(text);
  bool ok = false;
  number.toFloat(&ok);
  if (!ok) {
    number.toInt(&ok, 10);
  }
  if (!ok) {
    Refuse(parser + ": contains an illegal number, error:" + text);
  }
}

// The number that the text means. The messages name the conversion as the standard library does;
// `overflow` is what a parser calls one that is out of range.
template <typename Number>
Number NumberOf(const std::string& parser, const std::string& text,
                Conversion (*convert)(const std::string&, Number*), const std::string& function,
                const std::string& overflow) {
  CheckNumber(parser, text);
  Number number = 0;
  switch (convert(text, &number)) {
    case Conversion::kInvalidArgument:
      Refuse(parser + ": " + function + "() failed, error:invalid " + function + " argument");
    case Conversion::kOutOfRange:
      Refuse(parser + ": " + function + "() " + overflow + ", error:" + function +
             " argument out of range");
    case Conversion::kDone:
      break;
  }
  return number;
}

// Both integer parsers go through single precision.
float Quotient(const std::string& parser, const std::string& text, float coefficient) {
  return NumberOf<float>(parser, text, ToFloat, "stof", "failed") / coefficient;
}

std::vector<uint8_t> LowBytes(uint64_t value, uint64_t length) {
  std::vector<uint8_t> bytes;
  kavel::lidar::AppendBigEndian(bytes, value, length);
  return bytes;
}

// Upper bound of an unsigned value of n bytes. Meant to be so: the shift counts modulo 32, which
// gives 256 and 65536 for one and two bytes, but 1 for four and eight, so that "uint32" and
// "uint64" take only what truncates to 0. Tables use another type for such values that users may
// change.
float UnsignedBound(uint64_t length) {
  return static_cast<float>(int64_t{1} << ((8 * length) % 32));
}

// The quotient cut off at the point. Both ends of the range are single-precision numbers, so that
// 2^63 itself passes the check of "int64" although it is one too many; it wraps to the smallest
// number, as 2^31 does for "int32".
uint64_t Truncated(float quotient) {
  constexpr float kTwoTo63 = 9223372036854775808.0F;
  if (quotient >= kTwoTo63) {
    return uint64_t{1} << 63;
  }
  return static_cast<uint64_t>(static_cast<int64_t>(quotient));
}

}  // namespace

std::vector<uint8_t> IntParser::Parse(const std::string& text, float coefficient) {
  const float quotient = Quotient("IntParser", text, coefficient);
  const int top_bit = static_cast<int>(8 * length_) - 1;
  const float lowest = -std::ldexp(1.0F, top_bit);
  const auto highest = static_cast<float>(std::ldexp(1.0, top_bit) - 1);
  if (!(quotient >= lowest && quotient <= highest)) {
    Refuse("IntParser: contains an illegal number, error:" + text);
  }
  if (length_ != 1 && length_ != 2 && length_ != 4 && length_ != 8) {
    Refuse("intParser: parser_length is not supported, error:" + std::to_string(length_));
  }
  return LowBytes(Truncated(quotient), length_);
}

std::vector<uint8_t> UintParser::Parse(const std::string& text, float coefficient) {
  const float quotient = Quotient("UintParser", text, coefficient);
  if (!(quotient >= 0 && quotient < UnsignedBound(length_))) {
    Refuse("UintParser: contains an illegal number, error:" + text);
  }
  return LowBytes(static_cast<uint64_t>(quotient), length_);
}

std::vector<uint8_t> ExactParser::Parse(const std::string& text, float coefficient) {
  const auto bits = ExactBits(type_, text, coefficient);
  if (const auto* reason = std::get_if<std::string>(&bits)) {
    Refuse("ExactParser: " + *reason);
  }
  return LowBytes(std::get<uint64_t>(bits), length_);
}

std::vector<uint8_t> FloatParser::Parse(const std::string& text, float coefficient) {
  const auto number = NumberOf<float>("FloatParser", text, ToFloat, "stof", "out of range");
  std::vector<uint8_t> bytes;
  kavel::lidar::AppendBigEndian32(bytes, kavel::lidar::BitsOf(number / coefficient));
  return bytes;
}

std::vector<uint8_t> DoubleParser::Parse(const std::string& text, float coefficient) {
  const auto number = NumberOf<double>("DoubleParser", text, ToDouble, "stod", "out of range");
  std::vector<uint8_t> bytes;
  kavel::lidar::AppendBigEndian64(bytes,
                                  kavel::lidar::BitsOf(number / static_cast<double>(coefficient)));
  return bytes;
}

std::vector<uint8_t> IPv4Parser::Parse(const std::string& text, float /*coefficient*/) {
  const QStringList parts = QString::fromStdString(text).split('.');
  if (parts.size() != 4) {
    Refuse("IPv4Parser: ip address, wrong format.");
  }
  std::vector<uint8_t> bytes;
  for (const QString& part : parts) {
    bool ok = false;
    const int number = part.toInt(&ok, 10);
    if (!ok || number < 0 || number > 255) {
      Refuse("IPv4Parser: contains an illegal number");
    }
    bytes.push_back(static_cast<uint8_t>(number));
  }
  return bytes;
}

std::vector<uint8_t> MacParser::Parse(const std::string& text, float /*coefficient*/) {
  const QStringList parts = QString::fromStdString(text).split(':');
  if (parts.size() != 6) {
    // It says "ip address" on purpose: the wording is fixed.
    Refuse("MacParser: ip address, wrong format.");
  }
  std::vector<uint8_t> bytes;
  for (const QString& part : parts) {
    bool ok = false;
    const uint number = part.toUInt(&ok, 16);
    if (!ok || number > 255) {
      Refuse("MacParser: contains an illegal number");
    }
    bytes.push_back(static_cast<uint8_t>(number));
  }
  return bytes;
}

std::vector<uint8_t> RawParser::Parse(const std::string& /*text*/, float /*coefficient*/) {
  std::cout << "not developed" << std::endl;
  return {};
}

std::unique_ptr<StrParser> CreateStrParser(const std::string& var_type) {
  const ValueType& type = ValueTypeOf(var_type);
  const auto length = static_cast<uint64_t>(type.size);
  switch (type.kind) {
    case ValueKind::kInteger:
      if (type.is_exact) {
        return std::make_unique<ExactParser>(type);
      }
      if (type.is_signed) {
        return std::make_unique<IntParser>(length);
      }
      return std::make_unique<UintParser>(length);
    case ValueKind::kReal:
      if (length == sizeof(float)) {
        return std::make_unique<FloatParser>();
      }
      return std::make_unique<DoubleParser>();
    case ValueKind::kAddress:
      return std::make_unique<IPv4Parser>();
    case ValueKind::kMac:
      return std::make_unique<MacParser>();
    case ValueKind::kRaw:
      return std::make_unique<RawParser>();
    case ValueKind::kText:
    case ValueKind::kDuration:
    case ValueKind::kUnknown:
      break;
  }
  std::cout << "DEBUG(): not support the format is " << var_type << std::endl;
  return nullptr;
}
