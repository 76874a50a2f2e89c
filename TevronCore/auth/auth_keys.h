#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "auth/secret_bytes.h"
#include "variables/config_folder.h"
#include "variables/table_fault.h"

/// Where the keys of a deployment lie, relative to the install root (the current directory).
inline constexpr char kAuthKeysPath[] = "./Config/auth_keys.ini";

/// The key files of a folder, see ConfigFolder::FilesCalled.
inline constexpr char kAuthKeysName[] = "auth_keys.ini";

/// The key material of all authentication algorithms. An empty member was missing or malformed, and
/// makes every algorithm that needs it unavailable.
struct AuthKeys {
  SecretBytes aes128_key;  ///< 16 bytes
  SecretBytes aes256_key;  ///< 32 bytes
  SecretBytes maskword_1;  ///< 4 bytes, most significant first, as are the next three
  SecretBytes maskword_2;
  SecretBytes mix_c1;  ///< first constant of the mixing routine
  SecretBytes mix_c2;  ///< second constant of the mixing routine
};

/// How a key is written.
struct AuthKeyKind {
  const char* name;
  SecretBytes AuthKeys::*member;
  size_t size;          ///< in bytes, two digits each
  size_t least_digits;  ///< shorter values are right-aligned
};

inline constexpr std::array<AuthKeyKind, 6> kAuthKeyKinds = {{
    {"aes128_key", &AuthKeys::aes128_key, 16, 32},
    {"aes256_key", &AuthKeys::aes256_key, 32, 64},
    {"maskword_1", &AuthKeys::maskword_1, 4, 1},
    {"maskword_2", &AuthKeys::maskword_2, 4, 1},
    {"mix_c1", &AuthKeys::mix_c1, 4, 1},
    {"mix_c2", &AuthKeys::mix_c2, 4, 1},
}};

/// Reads the group [keys] of an INI file: `name = hexadecimal digits`, one a line, with or without
/// "0x"; lines that begin with ';' or '#' are comments. AES keys need exactly their 32 or 64
/// digits, the other values one to eight. A file that cannot be read gives keys that are all empty.
/// Never throws for the content and never logs any of it. Any thread.
AuthKeys LoadAuthKeys(const std::string& path);

/// The same of a folder's files: each key that a later file names stands in the place of the one
/// before, also one that is malformed there. With a later file that cannot be read there are no
/// keys at all.
AuthKeys LoadAuthKeys(const ConfigFolder& folder);

/// Whether the file is the demonstration set: it has a line `demo=true`.
bool IsDemoKeyFile(const std::string& path);

/// What is wrong with the way the key file is kept, as a sentence for the log window, or "" when it
/// is missing, when only its owner and group can read it, or when it is the demonstration set.
std::string AuthKeyFileWarning(const std::string& path);

/// Everything that is wrong with the key files of a folder, without any of their content.
void CheckAuthKeys(const ConfigFolder& folder, TableFaults* faults);
