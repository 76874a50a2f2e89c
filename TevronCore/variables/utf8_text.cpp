#include "variables/utf8_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

size_t AsciiPrefixOf(std::string_view text) {
  size_t at = 0;
  for (uint64_t word = 0; at + sizeof(word) <= text.size(); at += sizeof(word)) {
    std::memcpy(&word, text.data() + at, sizeof(word));
    if ((word & 0x8080808080808080U) != 0) {
      break;
    }
  }
  while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) {
    ++at;
  }
  return at;
}

// Bytes of the character of several bytes that the text begins with; 0 when it is none.
size_t WideCharacterSize(std::string_view text) {
  const auto byte = [text](size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
  };
  const unsigned first = byte(0);
  const size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4) {
    return 0;
  }
  // The second byte also rules out longer forms than needed, surrogates, and what lies beyond
  // Unicode.
  const unsigned lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const unsigned highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  if (byte(1) < lowest || byte(1) > highest) {
    return 0;
  }
  for (size_t at = 2; at < size; ++at) {
    if ((byte(at) & 0xC0U) != 0x80U) {
      return 0;
    }
  }
  return size;
}

}  // namespace

size_t Utf8PrefixOf(std::string_view text) {
  size_t at = 0;
  while (true) {
    at += AsciiPrefixOf(text.substr(at));
    const size_t size = at < text.size() ? WideCharacterSize(text.substr(at)) : 0;
    if (size == 0) {
      return at;
    }
    at += size;
  }
}

std::string Utf8Of(std::string_view text, size_t most_lines, std::vector<size_t>* lines) {
  std::string clean;
  clean.reserve(text.size());
  size_t line = 1;
  while (true) {
    const std::string_view good = text.substr(0, Utf8PrefixOf(text));
    clean.append(good);
    if (good.size() == text.size()) {
      return clean;
    }
    line += static_cast<size_t>(std::count(good.begin(), good.end(), '\n'));
    if (lines->size() < most_lines && (lines->empty() || lines->back() != line)) {
      lines->push_back(line);
    }
    clean.append(kReplacement);
    text.remove_prefix(good.size() + 1);
  }
}
