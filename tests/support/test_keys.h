#pragma once

#include <string>

#include "support/bytes.h"
#include "support/secret_search.h"

/// Keys of the tests' own, none of them one that ships.
namespace test_keys {

struct Key {
  const char* name;    ///< as in auth_keys.ini
  const char* digits;  ///< hexadecimal
};

/// One of every kind; the last begins with zeros.
inline constexpr Key kKeys[] = {
    {"aes128_key", "9b1f63d0c84e7a25f61208bd93e45c7a"},
    {"aes256_key", "c47d90e2316fb85a0d94e3a77c2b16f859e80d43bb6a2f71e4c5089d36fa127e"},
    {"maskword_1", "d36b90f7"},
    {"maskword_2", "8e71c5da"},
    {"mix_c1", "b7e249ac"},
    {"mix_c2", "000b53f6"}};

inline std::string File() {
  std::string text = "[keys]\n";
  for (const auto& [name, digits] : kKeys) {
    text += std::string(name) + '=' + digits + '\n';
  }
  return text;
}

inline void AddTo(SecretSearch* search) {
  for (const auto& [name, digits] : kKeys) {
    search->Add(name, FromHex(digits));
  }
}

/// The table that protects these commands of a model: "0x12|0x22".
inline std::string AuthTable(const std::string& model, int algorithm, const std::string& commands) {
  return "Model,Enable,AlgorithmID,ProbeCmd,ChallengeCmd,ResponseCmd,ProtectedCmds,"
         "ProbeValueOffset,ProbeValueLen,ProbeEndian\n" +
         model + ",1," + std::to_string(algorithm) + ",0xDF,0x66,0xE0," + commands + ",0,1,big\n";
}

}  // namespace test_keys
