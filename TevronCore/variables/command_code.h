#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// How a command text of a table travels.
struct CommandRoute {
  uint8_t code = 0;             ///< Command byte of the frame.
  std::vector<uint8_t> prefix;  ///< Bytes at the head of the payload, before any fixed payload.
};

/// Command byte of every long command.
constexpr uint8_t kLongCommandCode = 0xFF;

/// Texts from this many characters on are long commands.
constexpr size_t kLongCommandTextLength = 5;

/// Reads a command text with automatic base: "0x21" is hexadecimal, "033" octal, "33" decimal; only
/// the low byte counts. A text of five characters or more is a long command: it travels under 0xFF,
/// its hexadecimal pairs ("0x" skipped) at the head of the payload.
///
/// Throws std::invalid_argument "invalid stoi argument" for a text that is no number and
/// std::out_of_range "stoi argument out of range" for one that does not fit a 32-bit signed
/// integer.
CommandRoute ParseCommandText(const std::string& text);
