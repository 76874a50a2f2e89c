#pragma once

#include <string>

#include "auth/secret_bytes.h"

/// Where the keys of a deployment lie, relative to the install root (the current directory).
inline constexpr char kAuthKeysPath[] = "./Config/auth_keys.ini";

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

/// Reads the group [keys] of an INI file: `name = hexadecimal digits`, one a line, with or without
/// "0x"; lines that begin with ';' or '#' are comments. AES keys need exactly their 32 or 64
/// digits, the other values one to eight. A file that cannot be read gives keys that are all empty.
/// Never throws for the content and never logs any of it. Any thread.
AuthKeys LoadAuthKeys(const std::string& path);

/// What is wrong with the way the key file is kept, as a sentence for the log window, or "" when it
/// is missing, when only its owner and group can read it, or when it is the demonstration set (a
/// line `demo=true`).
std::string AuthKeyFileWarning(const std::string& path);
