#include "auth/auth_algorithm.h"
#include "auth/auth_keys.h"
#include "fuzz/fuzz_targets.h"

namespace {

std::string TextOf(const TableFaults& faults) {
  std::string text;
  for (const TableFault& fault : faults) {
    text += fault.text + '\n';
  }
  return text;
}

/// The file with other digits in every value.
std::string WithOtherDigits(std::string file) {
  bool is_value = false;
  for (char& c : file) {
    is_value = c != '\n' && (is_value || c == '=');
    if (is_value && c >= '1' && c <= '9') {
      c = c == '9' ? '1' : static_cast<char>(c + 1);
    }
  }
  return file;
}

std::string WhatIsTold(const std::string& file) {
  FuzzFolder().Write("keys/auth_keys.ini", file);
  TableFaults faults;
  CheckAuthKeys(ConfigFolder(FuzzFolder().path() + "/keys"), &faults);
  return TextOf(faults);
}

void CheckAlgorithm(int id, const std::string& path) {
  const AuthKeys keys = LoadAuthKeys(path);
  const std::vector<const AuthKeyKind*> needed = KeysNeededBy(id);
  const bool has_all =
      !needed.empty() && std::none_of(needed.begin(), needed.end(), [&](const AuthKeyKind* kind) {
        return (keys.*kind->member).empty();
      });
  const auto algorithm = CreateAuthAlgorithm(id, LoadAuthKeys(path));
  Require((algorithm != nullptr) == has_all, "an algorithm is there exactly with its keys");
  if (algorithm == nullptr) {
    return;
  }
  const Bytes challenge(16, 0xA5);
  const Bytes response = algorithm->Compute(challenge);
  Require(VerifyAuthResponse(id, keys, challenge, response), "both ends agree");
  Require(algorithm->Compute(Bytes(15)).empty(), "a challenge has 16 bytes");
}

}  // namespace

void FuzzAuthKeys(FuzzInput input) {
  const std::string file = input.RestText();
  Require(WhatIsTold(WithOtherDigits(file)) == WhatIsTold(file), "no key is told");
  const std::string path = FuzzFolder().path() + "/keys/auth_keys.ini";
  const AuthKeys keys = LoadAuthKeys(path);
  for (const AuthKeyKind& kind : kAuthKeyKinds) {
    const size_t size = (keys.*kind.member).size();
    Require(size == 0 || size == kind.size, "a key has its size or is not there");
  }
  for (int id = kNoAuthAlgorithm; id <= kAes128Cbc + 1; ++id) {
    CheckAlgorithm(id, path);
  }
  AuthKeyFileWarning(path);
}
