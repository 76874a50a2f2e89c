#include "auth/auth_algorithm.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

#include "Wire/crc32.h"
#include "auth/aes.h"
#include "auth/session_key.h"
#include "auth_test_support.h"

namespace {

const Bytes kChallenge = FromHex("000102030405060708090a0b0c0d0e0f");

const std::string kPlain =  // of both publications
    "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
    "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710";

// NIST SP 800-38A, F.2.1 and F.2.2: CBC-AES128.
TEST(Aes128Cbc, PublishedVectorsBothWays) {
  const SecretBytes key(FromHex(kTestAes128Key));
  const Bytes vector = FromHex("000102030405060708090a0b0c0d0e0f");
  const Bytes plain = FromHex(kPlain);
  const Bytes cipher = FromHex(
      "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2"
      "73bed6b8e3c1743b7116e69e222295163ff1caa1681fac09120eca307586e1a7");
  EXPECT_EQ(Aes128Cbc(CipherDirection::kEncrypt, key, vector, plain), cipher);
  EXPECT_EQ(Aes128Cbc(CipherDirection::kDecrypt, key, vector, cipher), plain);
  // Without padding a broken block, and a key or vector of another size, have no result.
  EXPECT_TRUE(Aes128Cbc(CipherDirection::kEncrypt, key, vector, Bytes(15)).empty());
  EXPECT_TRUE(Aes128Cbc(CipherDirection::kEncrypt, key, Bytes(15), plain).empty());
  EXPECT_TRUE(Aes128Cbc(CipherDirection::kEncrypt, SecretBytes(32), vector, plain).empty());
}

// NIST SP 800-38B, examples for CMAC with AES-256.
TEST(Aes256Cmac, PublishedVectors) {
  const SecretBytes key(FromHex(kTestAes256Key));
  EXPECT_EQ(Aes256CmacTag(key, {}), FromHex("028962f61b7bf89efc6b551f4667d983"));
  EXPECT_EQ(Aes256CmacTag(key, FromHex(kPlain.substr(0, 32))),
            FromHex("28a7023f452e8f82bd4bf28d8c37c35c"));
  EXPECT_EQ(Aes256CmacTag(key, FromHex(kPlain.substr(0, 80))),
            FromHex("aaf3d8f1de5640c232f5b169b9c911e6"));
  EXPECT_EQ(Aes256CmacTag(key, FromHex(kPlain)), FromHex("e1992190549f6ed5696a2c056c315410"));
  EXPECT_TRUE(Aes256CmacTag(SecretBytes(16), {}).empty());
}

/// What the firmware does, one byte and one bit at a time, with none of the program's helpers.
uint32_t MixStepByStep(uint32_t crc, uint32_t m, uint32_t c1, uint32_t c2) {
  const std::array<uint32_t, 4> crc_bytes = {crc / 0x1000000, crc / 0x10000 % 0x100,
                                             crc / 0x100 % 0x100, crc % 0x100};
  const auto join = [](uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    return ((a * 0x100 + b) * 0x100 + c) * 0x100 + d;
  };
  uint32_t s = join(crc_bytes[3], crc_bytes[2], crc_bytes[1], crc_bytes[0]);
  const uint32_t picked = crc_bytes[m / 0x10000 % 2 * 2 + m / 0x4000 % 2];
  const uint32_t k = (m / 0x800000) ^ 0xFFFFFFA5U;
  const uint32_t steps =
      ((((m / 8) & c1 & k & 0xFF) ^ (picked & k)) + (((m ^ c2) / 0x4000) & 0xFF)) % 0x10000;
  for (uint32_t i = 0; i < steps; ++i) {
    const uint32_t folded = (((((s >> 5) ^ s) >> 11) ^ s) >> 10) ^ s;
    s = s * 2 + folded / 8 % 2;
  }
  if (m / 2 % 2 == 1) {
    s = join(s / 0x100 % 0x100, s % 0x100, s / 0x1000000, s / 0x10000 % 0x100);
  }
  s ^= m;
  return join(s % 0x100, s / 0x100 % 0x100, s / 0x10000 % 0x100, s / 0x1000000);
}

TEST(SessionKey, AgreesWithAnIndependentImplementation) {
  std::mt19937 random(20260731);  // the same inputs in every run
  for (int i = 0; i < 20000; ++i) {
    const auto crc = static_cast<uint32_t>(random());
    const auto c1 = static_cast<uint32_t>(random());
    const auto c2 = static_cast<uint32_t>(random());
    const auto m = static_cast<uint32_t>(random());
    for (const uint32_t maskword : {m | 2U, m & ~2U}) {
      ASSERT_EQ(MixSessionKey(crc, maskword, {c1, c2}), MixStepByStep(crc, maskword, c1, c2))
          << std::hex << crc << ' ' << maskword << ' ' << c1 << ' ' << c2;
    }
  }
}

class Algorithms : public testing::Test {
 protected:
  Algorithms() { root_.WriteKeys(); }
  InstallRoot root_;
};

TEST_F(Algorithms, AnswerWithTheirOwnKeys) {
  // Worked out by hand with the keys of WriteKeys; the second mask word has bit 1 set.
  EXPECT_EQ(CreateAuthAlgorithm(1)->Compute(kChallenge), FromHex("0d158f58"));
  EXPECT_EQ(CreateAuthAlgorithm(2)->Compute(kChallenge), FromHex("cb26cc86"));
  EXPECT_EQ(CreateAuthAlgorithm(3)->Compute(kChallenge),
            Aes256CmacTag(SecretBytes(FromHex(kTestAes256Key)), kChallenge));
  const Bytes first = CreateAuthAlgorithm(4)->Compute(kChallenge);
  const Bytes second = CreateAuthAlgorithm(4)->Compute(kChallenge);
  ASSERT_EQ(first.size(), 32U);
  EXPECT_NE(first, second) << "the vector is drawn anew for every response";
  EXPECT_EQ(
      Aes128Cbc(CipherDirection::kDecrypt, SecretBytes(FromHex(kTestAes128Key)),
                Bytes(first.begin() + 16, first.end()), Bytes(first.begin(), first.begin() + 16)),
      kChallenge);
  EXPECT_EQ(CreateAuthAlgorithm(0), nullptr);
  EXPECT_EQ(CreateAuthAlgorithm(5), nullptr);
}

TEST_F(Algorithms, VerifyTheirOwnResponsesAndNothingElse) {
  const AuthKeys keys = LoadAuthKeys(kAuthKeysPath);
  Bytes other_challenge = kChallenge;
  other_challenge[7] ^= 1;
  ASSERT_EQ(AuthAlgorithmFactories().size(), 4U);
  for (const auto& [id, factory] : AuthAlgorithmFactories()) {
    const auto algorithm = factory();
    EXPECT_TRUE(algorithm->Compute(Bytes(15)).empty()) << id;
    EXPECT_TRUE(algorithm->Compute(Bytes(17)).empty()) << id;
    Bytes response = algorithm->Compute(kChallenge);
    EXPECT_TRUE(VerifyAuthResponse(id, keys, kChallenge, response)) << id;
    EXPECT_FALSE(VerifyAuthResponse(id, keys, other_challenge, response)) << id;
    EXPECT_FALSE(VerifyAuthResponse(id, AuthKeys(), kChallenge, response)) << id;
    EXPECT_FALSE(VerifyAuthResponse(id, keys, kChallenge, {})) << id;
    response.back() ^= 1;
    EXPECT_FALSE(VerifyAuthResponse(id, keys, kChallenge, response)) << id;
  }
}

TEST(AuthAlgorithmId, IsADecimalNumber) {
  EXPECT_EQ(ParseAuthAlgorithmId("3"), 3);
  EXPECT_EQ(ParseAuthAlgorithmId(" 4\t\r"), 4);
  for (const char* text : {"", " ", "three", "3x", "0x3", "99999999999"}) {
    EXPECT_EQ(ParseAuthAlgorithmId(text), kNoAuthAlgorithm) << text;
  }
}

}  // namespace
