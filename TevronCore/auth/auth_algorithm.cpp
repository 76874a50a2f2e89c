#include "auth/auth_algorithm.h"

#include <openssl/rand.h>

#include <utility>

#include "Wire/big_endian.h"
#include "Wire/crc32.h"
#include "auth/aes.h"
#include "auth/session_key.h"
#include "variables/number_text.h"

using kavel::lidar::AppendBigEndian32;
using kavel::lidar::Crc32Ieee;
using kavel::lidar::ReadBigEndian32;

namespace {

constexpr size_t kChallengeSize = 16;

class Aes128CbcAlgorithm : public IAuthAlgorithm {
 public:
  explicit Aes128CbcAlgorithm(SecretBytes key) : key_(std::move(key)) {}

  std::vector<uint8_t> Compute(const std::vector<uint8_t>& challenge) override {
    std::vector<uint8_t> vector(kAesBlockSize);
    if (challenge.size() != kChallengeSize ||
        RAND_bytes(vector.data(), static_cast<int>(vector.size())) != 1) {
      return {};
    }
    std::vector<uint8_t> response = Aes128Cbc(CipherDirection::kEncrypt, key_, vector, challenge);
    if (response.size() != kAesBlockSize) {
      return {};
    }
    response.insert(response.end(), vector.begin(), vector.end());
    return response;
  }

 private:
  const SecretBytes key_;
};

class Aes256CmacAlgorithm : public IAuthAlgorithm {
 public:
  explicit Aes256CmacAlgorithm(SecretBytes key) : key_(std::move(key)) {}

  std::vector<uint8_t> Compute(const std::vector<uint8_t>& challenge) override {
    return challenge.size() == kChallengeSize ? Aes256CmacTag(key_, challenge)
                                              : std::vector<uint8_t>();
  }

 private:
  const SecretBytes key_;
};

/// Mask word and constants are four bytes each, most significant first.
std::vector<uint8_t> SessionKeyResponse(const SecretBytes& maskword, const SecretBytes& c1,
                                        const SecretBytes& c2,
                                        const std::vector<uint8_t>& challenge) {
  if (challenge.size() != kChallengeSize || maskword.empty() || c1.empty() || c2.empty()) {
    return {};
  }
  const uint32_t session_key =
      MixSessionKey(Crc32Ieee(challenge.data(), challenge.size()), ReadBigEndian32(maskword.data()),
                    {ReadBigEndian32(c1.data()), ReadBigEndian32(c2.data())});
  std::vector<uint8_t> response;
  AppendBigEndian32(response, session_key);
  return response;
}

class MaskwordSessionKeyAlgorithm : public IAuthAlgorithm {
 public:
  MaskwordSessionKeyAlgorithm(SecretBytes maskword, SecretBytes c1, SecretBytes c2)
      : maskword_(std::move(maskword)), c1_(std::move(c1)), c2_(std::move(c2)) {}

  std::vector<uint8_t> Compute(const std::vector<uint8_t>& challenge) override {
    return SessionKeyResponse(maskword_, c1_, c2_, challenge);
  }

 private:
  const SecretBytes maskword_;
  const SecretBytes c1_;
  const SecretBytes c2_;
};

constexpr char kInstalledConfig[] = "./Config";  // the folder of kAuthKeysPath

AuthAlgorithmFactory FactoryOf(int id) {
  return [id] { return CreateAuthAlgorithm(id, LoadAuthKeys(ConfigFolder(kInstalledConfig))); };
}

bool Equal(const std::vector<uint8_t>& expected, const std::vector<uint8_t>& actual) {
  return !expected.empty() && expected.size() == actual.size() &&
         CRYPTO_memcmp(expected.data(), actual.data(), expected.size()) == 0;
}

/// The vector is random, so the lidar decrypts and compares with its challenge.
bool VerifyCbcResponse(const SecretBytes& key, const std::vector<uint8_t>& challenge,
                       const std::vector<uint8_t>& response) {
  if (challenge.size() != kChallengeSize || response.size() != 2 * kAesBlockSize) {
    return false;
  }
  const auto vector_begin = response.begin() + kAesBlockSize;
  return Equal(Aes128Cbc(CipherDirection::kDecrypt, key, {vector_begin, response.end()},
                         {response.begin(), vector_begin}),
               challenge);
}

}  // namespace

const std::map<int, AuthAlgorithmFactory>& AuthAlgorithmFactories() {
  static const std::map<int, AuthAlgorithmFactory> factories = {
      {kMaskwordOne, FactoryOf(kMaskwordOne)},
      {kMaskwordTwo, FactoryOf(kMaskwordTwo)},
      {kAes256Cmac, FactoryOf(kAes256Cmac)},
      {kAes128Cbc, FactoryOf(kAes128Cbc)},
  };
  return factories;
}

std::unique_ptr<IAuthAlgorithm> CreateAuthAlgorithm(int id) {
  const auto& factories = AuthAlgorithmFactories();
  const auto found = factories.find(id);
  return found == factories.end() ? nullptr : found->second();
}

std::unique_ptr<IAuthAlgorithm> CreateAuthAlgorithm(int id, AuthKeys keys) {
  for (const AuthKeyKind* kind : KeysNeededBy(id)) {
    if ((keys.*kind->member).empty()) {
      return nullptr;
    }
  }
  switch (id) {
    case kMaskwordOne:
    case kMaskwordTwo:
      return std::make_unique<MaskwordSessionKeyAlgorithm>(
          std::move(id == kMaskwordOne ? keys.maskword_1 : keys.maskword_2), std::move(keys.mix_c1),
          std::move(keys.mix_c2));
    case kAes256Cmac:
      return std::make_unique<Aes256CmacAlgorithm>(std::move(keys.aes256_key));
    case kAes128Cbc:
      return std::make_unique<Aes128CbcAlgorithm>(std::move(keys.aes128_key));
    default:
      return nullptr;
  }
}

std::vector<const AuthKeyKind*> KeysNeededBy(int id) {
  const auto needs = [id](const AuthKeyKind& kind) {
    const bool is_maskword = id == kMaskwordOne || id == kMaskwordTwo;
    return (id == kAes128Cbc && kind.member == &AuthKeys::aes128_key) ||
           (id == kAes256Cmac && kind.member == &AuthKeys::aes256_key) ||
           (id == kMaskwordOne && kind.member == &AuthKeys::maskword_1) ||
           (id == kMaskwordTwo && kind.member == &AuthKeys::maskword_2) ||
           (is_maskword && (kind.member == &AuthKeys::mix_c1 || kind.member == &AuthKeys::mix_c2));
  };
  std::vector<const AuthKeyKind*> kinds;
  for (const AuthKeyKind& kind : kAuthKeyKinds) {
    if (needs(kind)) {
      kinds.push_back(&kind);
    }
  }
  return kinds;
}

int ParseAuthAlgorithmId(const std::string& text) {
  return WholeNumber(Trim(text)).value_or(kNoAuthAlgorithm);
}

bool VerifyAuthResponse(int id, const AuthKeys& keys, const std::vector<uint8_t>& challenge,
                        const std::vector<uint8_t>& response) {
  switch (id) {
    case kMaskwordOne:
      return Equal(SessionKeyResponse(keys.maskword_1, keys.mix_c1, keys.mix_c2, challenge),
                   response);
    case kMaskwordTwo:
      return Equal(SessionKeyResponse(keys.maskword_2, keys.mix_c1, keys.mix_c2, challenge),
                   response);
    case kAes256Cmac:
      return challenge.size() == kChallengeSize &&
             Equal(Aes256CmacTag(keys.aes256_key, challenge), response);
    case kAes128Cbc:
      return VerifyCbcResponse(keys.aes128_key, challenge, response);
    default:
      return false;
  }
}
