#pragma once

#include <cstdint>
#include <vector>

#include "auth/secret_bytes.h"

inline constexpr size_t kAesBlockSize = 16;

enum class CipherDirection { kEncrypt, kDecrypt };

/// AES-128 in CBC mode without padding (NIST SP 800-38A). `input` must be whole blocks, `key` and
/// `vector` 16 bytes; anything else, and a failure of the library, gives an empty result.
std::vector<uint8_t> Aes128Cbc(CipherDirection direction, const SecretBytes& key,
                               const std::vector<uint8_t>& vector,
                               const std::vector<uint8_t>& input);

/// The 16-byte CMAC tag of `input` with AES-256 (NIST SP 800-38B); `key` must be 32 bytes. Empty on
/// any failure.
std::vector<uint8_t> Aes256CmacTag(const SecretBytes& key, const std::vector<uint8_t>& input);
