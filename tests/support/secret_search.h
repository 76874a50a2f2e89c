#pragma once

#include <QRegularExpression>
#include <string>
#include <vector>

#include "support/bytes.h"

/// Looks for secrets in what a program has written, whatever way somebody may have found to write
/// them: as they are, in hexadecimal, in decimal or in base64, small or large, with any separators,
/// byte by byte, word by word from behind, or all from behind. A word is only found where it is
/// unmistakable, since four bytes come by chance.
class SecretSearch {
 public:
  /// Throws std::invalid_argument for fewer than four bytes.
  void Add(const std::string& name, const Bytes& secret);
  /// The names of the secrets that stand in the text, each with the way; "" when none does.
  std::string FoundIn(const std::string& text) const;

 private:
  struct Needle {
    std::string name;
    QRegularExpression pattern;
  };

  std::vector<Needle> needles_;
};
