#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "auth/auth_keys.h"
#include "variables/config_folder.h"

/// What names the user and the computer.
struct PersonalNames {
  std::vector<std::string> homes;  ///< whole paths of the user's folder, without a slash at the end
  std::vector<std::string> words;  ///< user and host name

  static PersonalNames OfThisComputer();
};

/// Takes out of a text what nobody else may read. What is taken out leaves "(removed)", the user's
/// folder "~". Immutable once built; any thread.
class TextCleaner {
 public:
  /// With the keys of every key file of the folder, also one that another replaces.
  TextCleaner(const ConfigFolder& config, PersonalNames names);

  /// Without keys, names and the folders of users, and without any 16 bytes in hexadecimal: so
  /// long is the shortest key that the key files need not know of. A name counts as a whole word,
  /// without regard to case.
  std::string Clean(std::string_view text) const;

  /// Without the keys alone, for what tells nothing of the computer.
  std::string WithoutKeys(std::string_view text) const;

  /// Whether a key stands in it in hexadecimal, as Clean finds it: its bytes one after the other or
  /// with blanks, commas and the like in between, small or large, with or without leading zeros.
  bool HoldsKey(std::string_view text) const;

 private:
  struct Cut {
    size_t length = 0;  ///< 0: the text goes on as it is
    const char* instead = "";
  };

  Cut PersonalAt(std::string_view text, size_t at) const;
  size_t KeyAt(std::string_view text, size_t at) const;

  std::vector<SecretBytes> keys_;
  PersonalNames names_;
};
