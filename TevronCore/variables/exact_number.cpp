#include "variables/exact_number.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "Wire/big_endian.h"
#include "variables/number_text.h"

namespace {

/// digits x 10^exponent, negative or not. The digits have no leading zeros; none at all is 0.
struct Decimal {
  bool negative = false;
  std::string digits;
  int exponent = 0;
};

void DropLeadingZeros(std::string* digits) {
  digits->erase(0, std::min(digits->find_first_not_of('0'), digits->size()));
}

// Sign, digits and at most one point among them.
std::optional<Decimal> ParseDecimal(std::string_view text) {
  Decimal decimal;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    decimal.negative = text.front() == '-';
    text.remove_prefix(1);
  }
  const size_t point = text.find('.');
  decimal.digits = text.substr(0, point);
  if (point != std::string_view::npos) {
    decimal.digits += text.substr(point + 1);
    decimal.exponent = -static_cast<int>(text.size() - point - 1);
  }
  if (decimal.digits.empty() ||
      decimal.digits.find_first_not_of("0123456789") != std::string::npos) {
    return std::nullopt;
  }
  DropLeadingZeros(&decimal.digits);
  return decimal;
}

/// A finite coefficient as factor x 10^exponent. A single-precision number has at most nine digits.
struct Scale {
  bool negative;
  uint64_t factor;
  int exponent;
};

Scale ScaleOf(float coefficient) {
  char text[64];
  const char* end =
      std::to_chars(text, text + sizeof(text), coefficient, std::chars_format::scientific).ptr;
  const std::string_view shortest(text, static_cast<size_t>(end - text));
  const size_t mark = shortest.find('e');
  const Decimal mantissa = ParseDecimal(shortest.substr(0, mark)).value_or(Decimal());
  // from_chars takes no "+"
  const size_t digits = mark + (shortest[mark + 1] == '+' ? 2 : 1);
  return {mantissa.negative, WholeNumber<uint64_t>(mantissa.digits).value_or(0),
          mantissa.exponent + WholeNumber<int>(shortest.substr(digits)).value_or(0)};
}

std::string Multiplied(const std::string& digits, uint64_t factor) {
  std::string product;
  uint64_t carry = 0;
  for (auto digit = digits.rbegin(); digit != digits.rend() || carry != 0;) {
    if (digit != digits.rend()) {
      carry += static_cast<uint64_t>(*digit++ - '0') * factor;
    }
    product += static_cast<char>('0' + carry % 10);
    carry /= 10;
  }
  std::reverse(product.begin(), product.end());
  return product;
}

// Nothing when the division leaves a rest.
std::optional<std::string> Divided(const std::string& digits, uint64_t divisor) {
  std::string quotient;
  uint64_t rest = 0;
  for (const char digit : digits) {
    rest = rest * 10 + static_cast<uint64_t>(digit - '0');
    quotient += static_cast<char>('0' + rest / divisor);
    rest %= divisor;
  }
  if (rest != 0) {
    return std::nullopt;
  }
  DropLeadingZeros(&quotient);
  return quotient;
}

uint64_t Lowest(const ValueType& type) {
  return type.is_signed ? ~uint64_t{0} << (8 * type.size - 1) : 0;
}

uint64_t Highest(const ValueType& type) {
  return type.is_signed ? ~Lowest(type) : ~uint64_t{0} >> (64 - 8 * type.size);
}

// The two's complement of the number; nothing when the type has none.
std::optional<uint64_t> BitsOfDigits(const ValueType& type, bool negative,
                                     const std::string& digits) {
  if (digits.empty()) {
    return 0;
  }
  const std::optional<uint64_t> magnitude = WholeNumber<uint64_t>(digits);
  const uint64_t limit = negative ? uint64_t{0} - Lowest(type) : Highest(type);
  if (!magnitude || *magnitude > limit) {
    return std::nullopt;
  }
  return negative ? uint64_t{0} - *magnitude : *magnitude;
}

std::string TextOf(bool negative, std::string digits, int exponent) {
  if (exponent >= 0) {
    digits.append(digits.empty() ? 0 : static_cast<size_t>(exponent), '0');
    digits = digits.empty() ? "0" : digits;
  } else {
    const auto decimals = static_cast<size_t>(-exponent);
    if (digits.size() <= decimals) {
      digits.insert(0, decimals + 1 - digits.size(), '0');
    }
    digits.insert(digits.size() - decimals, 1, '.');
  }
  return negative ? '-' + digits : digits;
}

}  // namespace

std::string ExactText(const ValueType& type, uint64_t bits, float coefficient) {
  const auto size = static_cast<size_t>(type.size);
  const int64_t number = kavel::lidar::SignExtended(bits, size);
  const bool negative = type.is_signed && number < 0;
  const uint64_t magnitude = negative ? uint64_t{0} - static_cast<uint64_t>(number) : bits;
  const Scale scale = ScaleOf(coefficient);
  const std::string digits = magnitude == 0 ? std::string() : std::to_string(magnitude);
  return TextOf(magnitude != 0 && negative != scale.negative, Multiplied(digits, scale.factor),
                scale.exponent);
}

std::variant<uint64_t, std::string> ExactBits(const ValueType& type, std::string_view text,
                                              float coefficient) {
  std::optional<Decimal> decimal = ParseDecimal(Trim(text));
  if (!decimal) {
    return "\"" + std::string(text) + "\" is no decimal number";
  }
  const Scale scale = ScaleOf(coefficient);
  // Brought to the coefficient's decimals, both are whole numbers.
  int shift = decimal->exponent - scale.exponent;
  while (shift < 0 && !decimal->digits.empty() && decimal->digits.back() == '0') {
    decimal->digits.pop_back();
    ++shift;
  }
  std::optional<std::string> quotient;
  if (decimal->digits.empty()) {
    quotient.emplace();
  } else if (shift >= 0 && scale.factor != 0) {
    decimal->digits.append(static_cast<size_t>(shift), '0');
    quotient = Divided(decimal->digits, scale.factor);
  }
  if (!quotient) {
    return "\"" + std::string(text) + "\" is no multiple of " +
           TextOf(false, std::to_string(scale.factor), scale.exponent);
  }
  const auto bits = BitsOfDigits(type, decimal->negative != scale.negative, *quotient);
  if (!bits) {
    return "\"" + std::string(text) + "\" is not within " + ExactRange(type, coefficient);
  }
  return *bits;
}

std::string ExactRange(const ValueType& type, float coefficient) {
  const std::string ends[] = {ExactText(type, Lowest(type), coefficient),
                              ExactText(type, Highest(type), coefficient)};
  return coefficient < 0 ? ends[1] + " to " + ends[0] : ends[0] + " to " + ends[1];
}
