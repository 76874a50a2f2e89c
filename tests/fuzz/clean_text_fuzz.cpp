#include <string_view>

#include "fuzz/fuzz_targets.h"
#include "support_bundle/clean_text.h"

namespace {

constexpr char kKeyDigits[] = "0f1e2d3c4b5a69788796a5b4c3d2e1f0";
constexpr char kShortDigits[] = "1c90f3";
constexpr char kHome[] = "/srv/people/grete";
constexpr std::string_view kUser = "grete";

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// What a byte of a key may look like in a dump.
const char* const kSeparators[] = {"", " ", ", ", ":", " 0x", "\\x", "-", "\n"};
constexpr size_t kBreaksTheLine = 7;

const TextCleaner& Cleaner() {
  static const TextCleaner cleaner = [] {
    FuzzFolder().Write("clean/auth_keys.ini", std::string("[keys]\naes128_key = ") + kKeyDigits +
                                                  "\nmaskword_1 = " + kShortDigits + "\n");
    return TextCleaner(ConfigFolder(FuzzFolder().path() + "/clean"),
                       {{kHome}, {std::string(kUser), "werkbank"}});
  }();
  return cleaner;
}

/// The digits in the way that the input says: small or large, apart or not.
std::string Dump(const std::string& digits, FuzzInput* input) {
  const uint8_t how = input->Byte();
  const char* const separator = kSeparators[how & 7];
  std::string text;
  for (size_t i = 0; i < digits.size(); ++i) {
    text += i > 0 && i % 2 == 0 ? separator : "";
    const bool large = (how & 8) != 0 && digits[i] >= 'a';
    text += large ? static_cast<char>(digits[i] - 'a' + 'A') : digits[i];
  }
  return text;
}

/// A text with secrets in it.
std::string SomeText(FuzzInput* input) {
  std::string text;
  while (!input->empty()) {
    switch (input->Byte() % 8) {
      case 0:
        text += Dump(kKeyDigits, input);
        break;
      case 1:
        text += Dump(kShortDigits, input);
        break;
      case 2:
        text += kUser;
        break;
      case 3:
        text += kHome;
        break;
      default: {
        const Bytes block = input->Block(input->Byte());
        text.append(block.begin(), block.end());
      }
    }
  }
  return text;
}

bool IsWord(char c) {
  return c == '_' || std::isalnum(static_cast<unsigned char>(c)) != 0 ||
         (static_cast<unsigned char>(c) & 0x80U) != 0;
}

/// Whether the user is named, between what belongs to no word.
bool NamesUser(const std::string& text) {
  std::string lower = text;
  std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
  for (size_t at = lower.find(kUser); at != std::string::npos; at = lower.find(kUser, at + 1)) {
    const size_t end = at + kUser.size();
    if ((at == 0 || !IsWord(lower[at - 1])) && (end == lower.size() || !IsWord(lower[end]))) {
      return true;
    }
  }
  return false;
}

/// Whether the digits stand in it one behind the other.
bool HoldsDigits(const std::string& text, std::string_view digits) {
  std::string lower = text;
  std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
  return lower.find(digits) != std::string::npos;
}

}  // namespace

void FuzzCleanText(FuzzInput input) {
  const TextCleaner& cleaner = Cleaner();
  FuzzInput secret = input;
  const auto how = static_cast<uint8_t>(secret.Byte() % kBreaksTheLine);
  const uint8_t dump[] = {how};
  FuzzInput dumped(dump, 1);
  Require(cleaner.HoldsKey(Dump(kKeyDigits, &dumped)), "a key is found however it is written");

  const std::string text = SomeText(&input);
  const std::string clean = cleaner.Clean(text);
  Require(!cleaner.HoldsKey(clean) && !HoldsDigits(clean, kKeyDigits) &&
              !HoldsDigits(clean, kShortDigits),
          "no key is told");
  Require(!NamesUser(clean), "the user is not named");
  Require(clean.find(kHome + std::string("/")) == std::string::npos, "no home is told");
  const std::string keyless = cleaner.WithoutKeys(text);
  Require(!cleaner.HoldsKey(keyless) && !HoldsDigits(keyless, kKeyDigits),
          "no key is told without names");
  Require(cleaner.HoldsKey(text) || keyless == text, "a text without keys stays as it is");
}
