#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "auth/auth_keys.h"

/// Turns a lidar's random challenge into the response that unlocks one protected command.
class IAuthAlgorithm {
 public:
  virtual ~IAuthAlgorithm() = default;
  /// The response payload for a challenge of exactly 16 bytes; empty when the challenge has another
  /// length or the cryptographic library fails. Never throws.
  virtual std::vector<uint8_t> Compute(const std::vector<uint8_t>& challenge) = 0;
};

/// Identifiers as the tables give them.
enum AuthAlgorithmId : int {
  kNoAuthAlgorithm = 0,
  kMaskwordOne = 1,  ///< 4-byte response, first mask word
  kMaskwordTwo = 2,  ///< 4-byte response, second mask word
  kAes256Cmac = 3,   ///< 16-byte tag
  kAes128Cbc = 4,    ///< 16 bytes of ciphertext, then the 16 bytes of the random vector
};

using AuthAlgorithmFactory = std::function<std::unique_ptr<IAuthAlgorithm>()>;

/// Every algorithm there is, by identifier; filled once on first use and the same for the whole
/// process. A factory reads its keys from kAuthKeysPath and the site's file each time it is called,
/// and gives null when one that it needs is unavailable.
const std::map<int, AuthAlgorithmFactory>& AuthAlgorithmFactories();

/// A new algorithm for an identifier; null when the identifier is unknown or its keys are
/// unavailable.
std::unique_ptr<IAuthAlgorithm> CreateAuthAlgorithm(int id);

/// The same with these keys.
std::unique_ptr<IAuthAlgorithm> CreateAuthAlgorithm(int id, AuthKeys keys);

/// The keys that an algorithm needs; none for an unknown identifier.
std::vector<const AuthKeyKind*> KeysNeededBy(int id);

/// The identifier that a table cell names: a decimal number, blanks around it allowed. Anything
/// else is kNoAuthAlgorithm, which no factory serves.
int ParseAuthAlgorithmId(const std::string& text);

/// The lidar's side: whether `response` answers `challenge` under these keys. False as well for an
/// unknown identifier and for unavailable keys. Takes the same time wherever the bytes differ.
bool VerifyAuthResponse(int id, const AuthKeys& keys, const std::vector<uint8_t>& challenge,
                        const std::vector<uint8_t>& response);
