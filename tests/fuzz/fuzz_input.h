#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/bytes.h"
#include "support/test_folder.h"

/// The bytes that a target is given, taken from their beginning. Where there are none left, it
/// gives zeros and empty texts.
class FuzzInput {
 public:
  FuzzInput(const uint8_t* data, size_t size) : at_(data), end_(data + size) {}

  bool empty() const { return at_ == end_; }
  uint8_t Byte() { return empty() ? uint8_t{0} : *at_++; }
  uint16_t Number16() {
    const uint8_t high = Byte();
    return static_cast<uint16_t>(high << 8 | Byte());
  }

  /// The next `size` bytes, fewer at the end.
  Bytes Block(size_t size) {
    const uint8_t* const begin = at_;
    at_ += std::min(size, static_cast<size_t>(end_ - at_));
    return {begin, at_};
  }
  Bytes Rest() { return Block(static_cast<size_t>(end_ - at_)); }
  std::string RestText() {
    const Bytes rest = Rest();
    return {rest.begin(), rest.end()};
  }

  /// Up to the next line feed, which is passed over.
  std::string Line() {
    const uint8_t* const begin = at_;
    at_ = std::find(at_, end_, uint8_t{'\n'});
    std::string line(begin, at_);
    Byte();
    return line;
  }

 private:
  const uint8_t* at_;
  const uint8_t* end_;
};

/// Ends the program as a finding when what has to hold does not.
inline void Require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
  }
}

/// The folder of a target that reads files; it lives until the program ends.
inline const TestFolder& FuzzFolder() {
  static const TestFolder folder;
  return folder;
}
