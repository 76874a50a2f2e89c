#include "variables/number_text.h"

#include <locale.h>

#include <cerrno>
#include <cstdlib>

namespace {

#ifdef _WIN32
_locale_t ClassicLocale() {
  static const _locale_t locale = _create_locale(LC_ALL, "C");
  return locale;
}
float ConvertFloat(const char* text, char** end) { return _strtof_l(text, end, ClassicLocale()); }
double ConvertDouble(const char* text, char** end) { return _strtod_l(text, end, ClassicLocale()); }
#else
locale_t ClassicLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}
float ConvertFloat(const char* text, char** end) { return strtof_l(text, end, ClassicLocale()); }
double ConvertDouble(const char* text, char** end) { return strtod_l(text, end, ClassicLocale()); }
#endif

template <typename Number>
Conversion Convert(const std::string& text, Number (*convert)(const char*, char**), Number* value) {
  char* end = nullptr;
  errno = 0;
  const Number converted = convert(text.c_str(), &end);
  if (end == text.c_str()) {
    return Conversion::kInvalidArgument;
  }
  if (errno == ERANGE) {
    return Conversion::kOutOfRange;
  }
  *value = converted;
  return Conversion::kDone;
}

}  // namespace

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kWhite = " \t\r\n";
  const size_t first = text.find_first_not_of(kWhite);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kWhite) - first + 1);
}

std::string_view WithoutHexPrefix(std::string_view text) {
  const bool prefixed = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
  return prefixed ? text.substr(2) : text;
}

std::optional<double> SignedDecimal(std::string_view text) {
  text = Trim(text);
  return DecimalNumber<double>(!text.empty() && text.front() == '+' ? text.substr(1) : text);
}

Conversion ToFloat(const std::string& text, float* value) {
  return Convert(text, ConvertFloat, value);
}

Conversion ToDouble(const std::string& text, double* value) {
  return Convert(text, ConvertDouble, value);
}

std::string FixedText(double value) {
  char buffer[400];  // the largest double has 309 digits before the point
  const auto [end, error] =
      std::to_chars(buffer, buffer + sizeof(buffer), value, std::chars_format::fixed, 2);
  return error == std::errc() ? std::string(buffer, end) : std::string();
}

std::string ShortText(float value) {
  char buffer[64];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof(buffer), value);
  return error == std::errc() ? std::string(buffer, end) : std::string();
}

double AsWritten(float value) {
  if (value == 1.0F || !std::isfinite(value)) {
    return static_cast<double>(value);
  }
  return DecimalNumber<double>(ShortText(value)).value_or(static_cast<double>(value));
}
