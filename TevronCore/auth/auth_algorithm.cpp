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

std::unique_ptr<IAuthAlgorithm> MakeMaskword(SecretBytes AuthKeys::*maskword) {
  AuthKeys keys = LoadAuthKeys(kAuthKeysPath);
  if ((keys.*maskword).empty() || keys.mix_c1.empty() || keys.mix_c2.empty()) {
    return nullptr;
  }
  return std::make_unique<MaskwordSessionKeyAlgorithm>(
      std::move(keys.*maskword), std::move(keys.mix_c1), std::move(keys.mix_c2));
}

template <typename Algorithm>
std::unique_ptr<IAuthAlgorithm> MakeAes(SecretBytes AuthKeys::*key) {
  AuthKeys keys = LoadAuthKeys(kAuthKeysPath);
  return (keys.*key).empty() ? nullptr : std::make_unique<Algorithm>(std::move(keys.*key));
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
      {kMaskwordOne, [] { return MakeMaskword(&AuthKeys::maskword_1); }},
      {kMaskwordTwo, [] { return MakeMaskword(&AuthKeys::maskword_2); }},
      {kAes256Cmac, [] { return MakeAes<Aes256CmacAlgorithm>(&AuthKeys::aes256_key); }},
      {kAes128Cbc, [] { return MakeAes<Aes128CbcAlgorithm>(&AuthKeys::aes128_key); }},
  };
  return factories;
}

std::unique_ptr<IAuthAlgorithm> CreateAuthAlgorithm(int id) {
  const auto& factories = AuthAlgorithmFactories();
  const auto found = factories.find(id);
  return found == factories.end() ? nullptr : found->second();
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
