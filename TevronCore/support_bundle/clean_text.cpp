#include "support_bundle/clean_text.h"

#include <QDir>
#include <QFileInfo>
#include <QSysInfo>
#include <algorithm>
#include <utility>

namespace {

constexpr char kRemoved[] = "(removed)";
constexpr size_t kShortestUnknownKey = 16;
constexpr size_t kLeastSignificantDigits = 4;  // fewer stand in every other number
constexpr size_t kMostSeparators = 4;

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

int DigitAt(std::string_view text, size_t at) {
  const char digit = at < text.size() ? Lower(text[at]) : '\0';
  if (digit >= '0' && digit <= '9') {
    return digit - '0';
  }
  return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

/// Letters of other alphabets are words, too.
bool IsWord(char c) {
  const char lower = Lower(c);
  return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
         (static_cast<unsigned char>(c) & 0x80U) != 0;
}

bool IsWordAt(std::string_view text, size_t at) { return at < text.size() && IsWord(text[at]); }

bool IsAt(std::string_view text, size_t at, std::string_view word) {
  return text.size() - at >= word.size() &&
         std::equal(word.begin(), word.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                    [](char a, char b) { return Lower(a) == Lower(b); });
}

/// Behind what may stand between two bytes of a dump.
size_t BehindSeparators(std::string_view text, size_t at) {
  const size_t end = std::min(text.size(), at + kMostSeparators);
  while (at < end) {
    if (IsAt(text, at, "0x") || IsAt(text, at, "\\x")) {
      at += 2;
    } else if (std::string_view(" \t,:;-_").find(text[at]) != std::string_view::npos) {
      ++at;
    } else {
      break;
    }
  }
  return at;
}

/// How long the bytes in hexadecimal that begin here are, when there are so many that they may be a
/// key; else 0.
size_t DumpAt(std::string_view text, size_t at) {
  size_t end = at;
  size_t count = 0;
  for (size_t next = at; DigitAt(text, next) >= 0 && DigitAt(text, next + 1) >= 0; ++count) {
    end = next + 2;
    next = BehindSeparators(text, end);
  }
  if (count < kShortestUnknownKey) {
    return 0;
  }
  while (DigitAt(text, end) >= 0) {
    ++end;
  }
  return end - at;
}

int NibbleOf(const SecretBytes& key, size_t index) {
  const int byte = key.data()[index / 2];
  return index % 2 == 0 ? byte >> 4 : byte & 0xF;
}

/// How long the key's digits from `first` on are in the text here; 0 when something else stands.
size_t DigitsAt(std::string_view text, size_t at, const SecretBytes& key, size_t first) {
  size_t next = at;
  for (size_t index = first; index < 2 * key.size(); ++index) {
    if (index % 2 == 0 && index != first) {
      next = BehindSeparators(text, next);
    }
    if (DigitAt(text, next) != NibbleOf(key, index)) {
      return 0;
    }
    ++next;
  }
  return next - at;
}

size_t LeadingZeros(const SecretBytes& key) {
  size_t zeros = 0;
  while (zeros < 2 * key.size() && NibbleOf(key, zeros) == 0) {
    ++zeros;
  }
  return zeros;
}

/// The name below a folder that holds the folders of all users.
size_t UserFolderAt(std::string_view text, size_t at) {
  for (const std::string_view users : {"/home/", "/Users/", "\\Users\\"}) {
    if (text.substr(at, users.size()) == users) {
      const size_t name = at + users.size();
      const size_t end = std::min(text.find_first_of("/\\ \t\r\n\"'<>|:;,)", name), text.size());
      return end == name ? 0 : end - at;
    }
  }
  return 0;
}

/// The text with everything cut that `cut_at` finds.
template <typename CutAt>
std::string Replaced(std::string_view text, const CutAt& cut_at) {
  std::string replaced;
  replaced.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    if (const auto cut = cut_at(text, at); cut.length > 0) {
      replaced += cut.instead;
      at += cut.length;
    } else {
      replaced += text[at++];
    }
  }
  return replaced;
}

void AddName(const QString& name, std::vector<std::string>* names) {
  const std::string text = name.toStdString();
  if (!text.empty() && std::find(names->begin(), names->end(), text) == names->end()) {
    names->push_back(text);
  }
}

}  // namespace

PersonalNames PersonalNames::OfThisComputer() {
  PersonalNames names;
  const QString home = QDir::homePath();
  for (const QString& path : {home, QDir(home).canonicalPath()}) {
    if (!QDir(path).isRoot()) {
      AddName(path, &names.homes);
      AddName(QDir(path).dirName(), &names.words);
    }
  }
  AddName(QFileInfo(home).owner(), &names.words);
  for (const char* variable : {"USER", "LOGNAME", "USERNAME"}) {
    AddName(qEnvironmentVariable(variable), &names.words);
  }
  const QString host = QSysInfo::machineHostName();
  AddName(host, &names.words);
  AddName(host.section('.', 0, 0), &names.words);
  return names;
}

TextCleaner::TextCleaner(const ConfigFolder& config, PersonalNames names)
    : names_(std::move(names)) {
  for (const std::string& path : config.FilesCalled(kAuthKeysName)) {
    AuthKeys keys = LoadAuthKeys(path);
    for (const AuthKeyKind& kind : kAuthKeyKinds) {
      if (SecretBytes& key = keys.*kind.member; !key.empty()) {
        keys_.push_back(std::move(key));
      }
    }
  }
  // The whole name of a host goes before the word that it begins with.
  const auto is_longer = [](const std::string& a, const std::string& b) {
    return a.size() > b.size();
  };
  std::sort(names_.homes.begin(), names_.homes.end(), is_longer);
  std::sort(names_.words.begin(), names_.words.end(), is_longer);
}

TextCleaner::Cut TextCleaner::PersonalAt(std::string_view text, size_t at) const {
  for (const std::string& home : names_.homes) {
    const size_t end = at + home.size();
    const bool is_whole = !IsWordAt(text, end) && (end >= text.size() || text[end] != '-');
    if (text.substr(at, home.size()) == home && is_whole) {
      return {home.size(), "~"};
    }
  }
  if (const size_t length = UserFolderAt(text, at); length > 0) {
    return {length, "/home/(removed)"};
  }
  if (at > 0 && IsWord(text[at - 1])) {
    return {};
  }
  for (const std::string& word : names_.words) {
    if (IsAt(text, at, word) && !IsWordAt(text, at + word.size())) {
      return {word.size(), kRemoved};
    }
  }
  return {};
}

size_t TextCleaner::KeyAt(std::string_view text, size_t at) const {
  if (DigitAt(text, at) < 0) {
    return 0;
  }
  for (const SecretBytes& key : keys_) {
    const size_t zeros = LeadingZeros(key);
    size_t length = DigitsAt(text, at, key, 0);
    if (length == 0 && 2 * key.size() - zeros >= kLeastSignificantDigits) {
      length = DigitsAt(text, at, key, zeros);
    }
    if (length > 0) {
      return length;
    }
  }
  return 0;
}

// Keys go first: a name that stood right beside one is a whole word then.
std::string TextCleaner::Clean(std::string_view text) const {
  const std::string keyless = Replaced(text, [&](std::string_view whole, size_t at) {
    return Cut{std::max(KeyAt(whole, at), DumpAt(whole, at)), kRemoved};
  });
  return Replaced(keyless,
                  [&](std::string_view whole, size_t at) { return PersonalAt(whole, at); });
}

std::string TextCleaner::WithoutKeys(std::string_view text) const {
  return Replaced(text, [&](std::string_view whole, size_t at) {
    return Cut{KeyAt(whole, at), kRemoved};
  });
}

bool TextCleaner::HoldsKey(std::string_view text) const {
  for (size_t at = 0; at < text.size(); ++at) {
    if (KeyAt(text, at) > 0) {
      return true;
    }
  }
  return false;
}
