#include "auth/auth_keys.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "variables/number_text.h"

namespace {

// A QSettings object would be shorter, but it keeps every file that it has parsed in a cache that
// lives as long as the process, and the keys with it. Here the text is in one buffer that is wiped.

constexpr size_t kLargestFile = size_t{64} * 1024;
constexpr size_t kWordSize = 4;

/// The whole file; empty when it cannot be read or is larger than a key file can be.
SecretBytes ReadFile(const std::string& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  if (error || size > kLargestFile) {
    return {};
  }
  SecretBytes text(static_cast<size_t>(size));
  std::ifstream file;
  file.rdbuf()->pubsetbuf(nullptr, 0);  // no second copy in a buffer that nobody wipes
  file.open(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(text.data()), static_cast<std::streamsize>(text.size()));
  return static_cast<size_t>(file.gcount()) == text.size() ? std::move(text) : SecretBytes();
}

/// Calls visit(group, name, value) for every assignment. The views end with `text`.
template <typename Visitor>
void ForEachValue(const SecretBytes& text, Visitor visit) {
  std::string_view rest(reinterpret_cast<const char*>(text.data()), text.size());
  std::string_view group;
  if (rest.substr(0, 3) == "\xEF\xBB\xBF") {
    rest.remove_prefix(3);  // the byte-order mark of some editors
  }
  while (!rest.empty()) {
    const size_t end = rest.find('\n');
    const std::string_view line = Trim(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    const size_t equals = line.find('=');
    if (line.empty() || line.front() == ';' || line.front() == '#') {
      continue;
    }
    if (line.front() == '[' && line.back() == ']') {
      group = Trim(line.substr(1, line.size() - 2));
    } else if (equals != std::string_view::npos) {
      visit(group, Trim(line.substr(0, equals)), Trim(line.substr(equals + 1)));
    }
  }
}

/// The value of a hexadecimal digit, or -1.
int DigitValue(char digit) {
  if (digit >= '0' && digit <= '9') {
    return digit - '0';
  }
  const int lower = std::tolower(static_cast<unsigned char>(digit));
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// `size` bytes from at least `least_digits` hexadecimal digits, right-aligned; empty when the text
/// is anything else.
SecretBytes ParseHex(std::string_view text, size_t size, size_t least_digits) {
  text = WithoutHexPrefix(text);
  if (text.size() < least_digits || text.size() > 2 * size) {
    return {};
  }
  SecretBytes bytes(size);
  size_t position = 2 * size - text.size();
  for (const char digit : text) {
    const int value = DigitValue(digit);
    if (value < 0) {
      return {};
    }
    uint8_t& byte = bytes.data()[position / 2];
    byte = static_cast<uint8_t>(byte << 4 | value);
    ++position;
  }
  return bytes;
}

SecretBytes ParseKey(std::string_view text, size_t size) { return ParseHex(text, size, 2 * size); }

SecretBytes ParseWord(std::string_view text) { return ParseHex(text, kWordSize, 1); }

}  // namespace

AuthKeys LoadAuthKeys(const std::string& path) {
  AuthKeys keys;
  const SecretBytes text = ReadFile(path);
  ForEachValue(text,
               [&keys](std::string_view group, std::string_view name, std::string_view value) {
                 if (group != "keys") {
                   return;
                 }
                 if (name == "aes128_key") {
                   keys.aes128_key = ParseKey(value, 16);
                 } else if (name == "aes256_key") {
                   keys.aes256_key = ParseKey(value, 32);
                 } else if (name == "maskword_1") {
                   keys.maskword_1 = ParseWord(value);
                 } else if (name == "maskword_2") {
                   keys.maskword_2 = ParseWord(value);
                 } else if (name == "mix_c1") {
                   keys.mix_c1 = ParseWord(value);
                 } else if (name == "mix_c2") {
                   keys.mix_c2 = ParseWord(value);
                 }
               });
  return keys;
}

std::string AuthKeyFileWarning(const std::string& path) {
  std::error_code error;
  const std::filesystem::perms permissions = std::filesystem::status(path, error).permissions();
  if (error ||
      (permissions & std::filesystem::perms::others_read) == std::filesystem::perms::none) {
    return "";
  }
  bool demo = false;
  const SecretBytes text = ReadFile(path);
  ForEachValue(text, [&demo](std::string_view, std::string_view name, std::string_view value) {
    demo = demo || (name == "demo" && value == "true");
  });
  return demo ? ""
              : "The key file " + path +
                    " can be read by every user of this computer. Allow only its owner to read it "
                    "(chmod 600).";
}
