#pragma once

#include <string>
#include <vector>

#include "support/bytes.h"

/// Looks for secrets in what a program has written, however they are spelt there: as bytes, in
/// hexadecimal and decimal with whatever stands between the numbers, in base64 wherever in its
/// groups of three bytes they begin, all with the bytes of each word, or all bytes, also in
/// reverse.
class SecretSearch {
 public:
  /// A secret of at least four bytes. One of fewer than eight is found only where nothing but its
  /// digits, the usual separators or the end of its base64 stands there, so that chance finds none.
  void Add(const std::string& name, const Bytes& secret);

  /// The names of the secrets that stand in the text, each with how; empty without one.
  std::string FoundIn(const std::string& text) const;

 private:
  /// A text as it is looked at, to find what stands in it in another spelling.
  enum class View { kAsItIs, kLowerCase, kHexDigits, kDecimals, kBase64 };
  struct Needle {
    std::string name;
    View view;
    std::string text;
  };

  void AddOrder(const std::string& name, const Bytes& bytes);
  static std::string Viewed(const std::string& text, View view);

  std::vector<Needle> needles_;
};
