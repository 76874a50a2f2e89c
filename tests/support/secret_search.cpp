#include "support/secret_search.h"

#include <QByteArray>
#include <algorithm>
#include <cctype>
#include <map>
#include <stdexcept>

namespace {

constexpr size_t kWordSize = 4;
// Shorter ones are not looked for in what is left of a text without its separators.
constexpr size_t kUnmistakableSize = 8;

QByteArray Array(const Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

Bytes WithWordsReversed(Bytes bytes) {
  for (size_t at = 0; at + kWordSize <= bytes.size(); at += kWordSize) {
    const auto word = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    std::reverse(word, word + kWordSize);
  }
  return bytes;
}

std::string Joined(const Bytes& bytes, int base, const std::string& between) {
  std::string text;
  for (const uint8_t byte : bytes) {
    const QByteArray digits = QByteArray::number(byte, base);
    text +=
        (text.empty() ? "" : between) + (base == 16 && byte < 16 ? "0" : "") + digits.toStdString();
  }
  return text;
}

/// What base64 is certain to have where the bytes begin `before` bytes into a group of three.
std::string InBase64(const Bytes& bytes, size_t before) {
  const std::string whole = (QByteArray(static_cast<int>(before), '\0') + Array(bytes))
                                .toBase64(QByteArray::OmitTrailingEquals)
                                .toStdString();
  const size_t first = (8 * before + 5) / 6;
  return whole.substr(first, 8 * (before + bytes.size()) / 6 - first);
}

template <typename Keeps>
std::string Only(std::string text, const Keeps& keeps) {
  text.erase(std::remove_if(text.begin(), text.end(),
                            [&](char c) { return !keeps(static_cast<unsigned char>(c)); }),
             text.end());
  return text;
}

std::string LowerCase(std::string text) {
  for (char& c : text) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return text;
}

std::string HexDigits(const std::string& text) {
  std::string digits;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool is_prefix = i + 1 < text.size() && text[i] == '0' && text[i + 1] == 'x';
    if (!is_prefix && std::isxdigit(static_cast<unsigned char>(text[i])) != 0) {
      digits += text[i];
    }
  }
  return digits;
}

/// Every number with one blank before and behind it.
std::string Decimals(const std::string& text) {
  std::string numbers = " ";
  for (const char c : text) {
    const bool is_digit = std::isdigit(static_cast<unsigned char>(c)) != 0;
    if (is_digit || numbers.back() != ' ') {
      numbers += is_digit ? c : ' ';
    }
  }
  return numbers + ' ';
}

}  // namespace

void SecretSearch::Add(const std::string& name, const Bytes& secret) {
  if (secret.size() < kWordSize) {
    throw std::invalid_argument(name + " is too short to be searched for");
  }
  AddOrder(name, secret);
  AddOrder(name + " by words", WithWordsReversed(secret));
  if (secret.size() > kWordSize) {
    AddOrder(name + " reversed", {secret.rbegin(), secret.rend()});
  }
}

void SecretSearch::AddOrder(const std::string& name, const Bytes& bytes) {
  const auto add = [&](const char* how, View view, const std::string& text) {
    needles_.push_back({name + how, view, text});
  };
  add(" as bytes", View::kAsItIs, Array(bytes).toStdString());
  add(" in decimal", View::kDecimals, ' ' + Joined(bytes, 10, " ") + ' ');
  if (bytes.size() >= kUnmistakableSize) {
    add(" in hexadecimal", View::kHexDigits, Joined(bytes, 16, ""));
    for (const size_t before : {0U, 1U, 2U}) {
      add(" in base64", View::kBase64, InBase64(bytes, before));
    }
    return;
  }
  for (const char* between : {"", " ", ",", ", ", ":", "-", " 0x", ",0x", ", 0x", "\\x"}) {
    add(" in hexadecimal", View::kLowerCase, Joined(bytes, 16, between));
  }
  add(" in base64", View::kBase64, Array(bytes).toBase64().toStdString());
  if (bytes.size() == kWordSize) {
    const QByteArray number = QByteArray::number(Array(bytes).toHex().toUInt(nullptr, 16));
    add(" as a number", View::kDecimals, ' ' + number.toStdString() + ' ');
  }
}

std::string SecretSearch::FoundIn(const std::string& text) const {
  std::map<View, std::string> views;
  std::string found;
  for (const Needle& needle : needles_) {
    if (views.count(needle.view) == 0) {
      views[needle.view] = Viewed(text, needle.view);
    }
    if (views[needle.view].find(needle.text) != std::string::npos) {
      found += (found.empty() ? "" : "; ") + needle.name;
    }
  }
  return found;
}

std::string SecretSearch::Viewed(const std::string& text, View view) {
  switch (view) {
    case View::kAsItIs:
      return text;
    case View::kLowerCase:
      return LowerCase(text);
    case View::kHexDigits:
      return HexDigits(LowerCase(text));
    case View::kDecimals:
      return Decimals(text);
    case View::kBase64:
      break;
  }
  std::string standard = Only(text, [](unsigned char c) { return std::isspace(c) == 0; });
  std::replace(standard.begin(), standard.end(), '-', '+');
  std::replace(standard.begin(), standard.end(), '_', '/');
  return standard;
}
