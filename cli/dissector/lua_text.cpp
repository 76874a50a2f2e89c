#include "dissector/lua_text.h"

#include <cstdio>

#include "variables/utf8_text.h"

namespace {

// Three digits, so that a digit behind it stays one.
std::string Escape(unsigned char byte) {
  char escape[5];
  std::snprintf(escape, sizeof escape, "\\%03u", static_cast<unsigned>(byte));
  return escape;
}

}  // namespace

std::string LuaString(const std::string& text) {
  const size_t sound = Utf8PrefixOf(text);
  std::string literal = "\"";
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool is_plain = byte >= 0x20 && byte < 0x7F && byte != '"' && byte != '\\';
    const bool is_letter = byte >= 0x80 && i < sound;
    literal += is_plain || is_letter ? std::string(1, text[i]) : Escape(byte);
  }
  return literal + '"';
}

std::string LuaString(const std::vector<uint8_t>& bytes) {
  std::string literal = "\"";
  for (const uint8_t byte : bytes) {
    literal += Escape(byte);
  }
  return literal + '"';
}

std::string LuaByte(uint8_t byte) {
  char text[5];
  std::snprintf(text, sizeof text, "0x%02x", static_cast<unsigned>(byte));
  return text;
}
