#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "variables/value_type.h"

/// Turns the text of a value, as the user typed it or as it stands in a table, into payload bytes,
/// most significant byte first. Keeps no state between calls and never depends on the locale.
///
/// Parse throws std::invalid_argument for a text that is not accepted. The message begins with the
/// class name and is meant for the user. Numbers are divided by `coefficient` before they are
/// encoded; addresses ignore it.
class StrParser {
 public:
  virtual ~StrParser() = default;
  virtual std::vector<uint8_t> Parse(const std::string& text, float coefficient) = 0;

 protected:
  explicit StrParser(uint64_t length) : length_(length) {}
  uint64_t length_;  ///< Bytes of an encoded integer; the other types do not use it.
};

/// "int8" to "int64", by length. Goes through a single-precision number: 24 significant bits.
class IntParser : public StrParser {
 public:
  explicit IntParser(uint64_t length) : StrParser(length) {}
  std::vector<uint8_t> Parse(const std::string& text, float coefficient) override;
};

/// "uint8" to "uint64", by length. "uint32" and "uint64" accept only what truncates to 0.
class UintParser : public StrParser {
 public:
  explicit UintParser(uint64_t length) : StrParser(length) {}
  std::vector<uint8_t> Parse(const std::string& text, float coefficient) override;
};

/// "u32", "i32", "u64" and "i64": every number of the type, see ExactBits.
class ExactParser : public StrParser {
 public:
  explicit ExactParser(const ValueType& type)
      : StrParser(static_cast<uint64_t>(type.size)), type_(type) {}
  std::vector<uint8_t> Parse(const std::string& text, float coefficient) override;

 private:
  const ValueType& type_;
};

/// "float32": the four bytes of an IEEE 754 single-precision number.
class FloatParser : public StrParser {
 public:
  FloatParser() : StrParser(1) {}
  std::vector<uint8_t> Parse(const std::string& text, float coefficient) override;
};

/// "double": the eight bytes of an IEEE 754 double-precision number.
class DoubleParser : public StrParser {
 public:
  DoubleParser() : StrParser(1) {}
  std::vector<uint8_t> Parse(const std::string& text, float coefficient) override;
};

/// "IP": four decimal numbers with "." between.
class IPv4Parser : public StrParser {
 public:
  IPv4Parser() : StrParser(1) {}
  std::vector<uint8_t> Parse(const std::string& text, float coefficient) override;
};

/// "MAC": six hexadecimal numbers with ":" between.
class MacParser : public StrParser {
 public:
  MacParser() : StrParser(1) {}
  std::vector<uint8_t> Parse(const std::string& text, float coefficient) override;
};

/// "raw": has no text form; gives no bytes and says "not developed" on standard output.
class RawParser : public StrParser {
 public:
  RawParser() : StrParser(1) {}
  std::vector<uint8_t> Parse(const std::string& text, float coefficient) override;
};

/// The parser of a value type (compared exactly); null for a type without one, with a line on
/// standard output.
std::unique_ptr<StrParser> CreateStrParser(const std::string& var_type);
