#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A command text of a table as it travels.
struct WireCommand {
  uint8_t code = 0;              ///< Command byte of the frame.
  std::vector<uint8_t> payload;  ///< Head of the payload: the bytes of a long text, the fixed ones.
};

/// Command byte of every long command.
constexpr uint8_t kLongCommandCode = 0xFF;

/// Texts from this many characters on are long commands.
constexpr size_t kLongCommandTextLength = 5;

/// Reads a command text with automatic base: "0x21" is hexadecimal, "033" octal, "33" decimal; only
/// the low byte counts. A text of five characters or more is a long command: it travels under 0xFF,
/// its hexadecimal pairs ("0x" skipped) at the head of the payload. `fixed_payload` follows.
///
/// Throws std::invalid_argument "invalid stoi argument" for a text that is no number and
/// std::out_of_range "stoi argument out of range" for one that does not fit a 32-bit signed
/// integer.
WireCommand WireCommandOf(const std::string& text, const std::vector<uint8_t>& fixed_payload = {});

/// The text as a long command, however short it is: its hexadecimal pairs ("0x" skipped), then
/// `fixed_payload`, under 0xFF. Throws std::invalid_argument "invalid stoi argument" for a text
/// that is empty or no row of hexadecimal digits.
WireCommand LongCommandOf(const std::string& text, const std::vector<uint8_t>& fixed_payload);

/// The same key for all texts that travel as one command, as "0x22" and "34" do. A text that is no
/// command has a key of its own.
std::string CommandKey(const std::string& text);

/// Whether `text` is a short command with this code, however the code is written: "0x22", "0X22"
/// and "34" are one command. False for a text that is no command.
bool IsCommand(const std::string& text, uint8_t code);
