#include "auth/auth_keys.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>
#include <utility>

#include "Platform/key_file.h"
#include "files/whole_file.h"
#include "variables/fault_list.h"
#include "variables/number_text.h"

namespace {

// A QSettings object would be shorter, but it keeps every file that it has parsed in a cache that
// lives as long as the process, and the keys with it. Here the text is in one buffer that is wiped.

constexpr size_t kLargestFile = size_t{64} * 1024;
constexpr std::string_view kKeyGroup = "keys";
constexpr std::string_view kDemo = "demo";

/// The whole file, in memory that is wiped; nothing, with the reason, when it cannot be read or is
/// larger than a key file can be.
std::optional<SecretBytes> ReadKeys(const std::string& path, std::string* reason) {
  SecretBytes text;
  *reason = ReadWholeFile(path, kLargestFile, [&text](size_t size) {
    text = SecretBytes(size);
    return text.data();
  });
  return reason->empty() ? std::make_optional(std::move(text)) : std::nullopt;
}

/// Calls visit(line, group, name, value) for every assignment, and without a name for what is none;
/// lines count from 1. The views end with `text`.
template <typename Visitor>
void ForEachValue(const SecretBytes& text, Visitor visit) {
  std::string_view rest(reinterpret_cast<const char*>(text.data()), text.size());
  std::string_view group;
  if (rest.substr(0, 3) == "\xEF\xBB\xBF") {
    rest.remove_prefix(3);  // the byte-order mark of some editors
  }
  for (size_t number = 1; !rest.empty(); ++number) {
    const size_t end = rest.find('\n');
    const std::string_view line = Trim(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    const size_t equals = line.find('=');
    if (line.empty() || line.front() == ';' || line.front() == '#') {
      continue;
    }
    if (line.front() == '[' && line.back() == ']') {
      group = Trim(line.substr(1, line.size() - 2));
    } else {
      const bool is_value = equals != std::string_view::npos;
      visit(number, group, is_value ? Trim(line.substr(0, equals)) : std::string_view(),
            is_value ? Trim(line.substr(equals + 1)) : std::string_view());
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

const AuthKeyKind* KindOf(std::string_view group, std::string_view name) {
  const auto* kind = std::find_if(kAuthKeyKinds.begin(), kAuthKeyKinds.end(),
                                  [name](const AuthKeyKind& known) { return known.name == name; });
  return group == kKeyGroup && kind != kAuthKeyKinds.end() ? kind : nullptr;
}

/// Replaces each key that the file names.
void TakeKeys(const std::string& path, AuthKeys* keys) {
  std::string reason;
  const std::optional<SecretBytes> text = ReadKeys(path, &reason);
  if (!text) {
    *keys = AuthKeys();
    return;
  }
  ForEachValue(
      *text, [keys](size_t, std::string_view group, std::string_view name, std::string_view value) {
        if (const AuthKeyKind* kind = KindOf(group, name)) {
          keys->*kind->member = ParseHex(value, kind->size, kind->least_digits);
        }
      });
}

std::string DigitsOf(const AuthKeyKind& kind) {
  const std::string most = std::to_string(2 * kind.size);
  return kind.least_digits == 2 * kind.size ? most : "1 to " + most;
}

void CheckLine(size_t line, std::string_view group, std::string_view name, std::string_view value,
               FaultList* faults) {
  const AuthKeyKind* const kind = KindOf(group, name);
  if (kind == nullptr) {
    if (name != kDemo) {
      faults->Warn(line,
                   "this line is no key and means nothing; the keys stand below [keys] and are "
                   "aes128_key, aes256_key, maskword_1, maskword_2, mix_c1 and mix_c2");
    }
  } else if (ParseHex(value, kind->size, kind->least_digits).empty()) {
    faults->Fault(line,
                  std::string(kind->name) + " is malformed; write " + DigitsOf(*kind) +
                      " hexadecimal digits. The algorithms that need it are unavailable until "
                      "then");
  }
}

}  // namespace

AuthKeys LoadAuthKeys(const std::string& path) {
  AuthKeys keys;
  TakeKeys(path, &keys);
  return keys;
}

AuthKeys LoadAuthKeys(const ConfigFolder& folder) {
  AuthKeys keys;
  for (const std::string& file : folder.FilesCalled(kAuthKeysName)) {
    TakeKeys(file, &keys);
  }
  return keys;
}

bool IsDemoKeyFile(const std::string& path) {
  bool is_demo = false;
  std::string reason;
  if (const std::optional<SecretBytes> text = ReadKeys(path, &reason)) {
    ForEachValue(
        *text, [&is_demo](size_t, std::string_view, std::string_view name, std::string_view value) {
          is_demo = is_demo || (name == kDemo && value == "true");
        });
  }
  return is_demo;
}

std::string AuthKeyFileWarning(const std::string& path) {
  std::string warning = kavel::lidar::KeyFileWarning(path);
  return warning.empty() || IsDemoKeyFile(path) ? "" : warning;
}

void CheckAuthKeys(const ConfigFolder& folder, TableFaults* faults) {
  for (const std::string& path : folder.FilesCalled(kAuthKeysName)) {
    FaultList found(path);
    std::string reason;
    const std::optional<SecretBytes> text = ReadKeys(path, &reason);
    if (!text) {
      found.Fault(0, "cannot be read as a key file, so that no algorithm has keys: " + reason);
      found.MoveTo(faults);
      continue;
    }
    ForEachValue(*text,
                 [&found](size_t line, std::string_view group, std::string_view name,
                          std::string_view value) { CheckLine(line, group, name, value, &found); });
    found.MoveTo(faults);
    if (const std::string warning = AuthKeyFileWarning(path); !warning.empty()) {
      faults->push_back({0, warning, TableFault::Severity::kWarning, path});
    }
  }
}
