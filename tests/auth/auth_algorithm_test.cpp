#include "auth/auth_algorithm.h"

#include <gtest/gtest.h>

#include "auth/aes.h"
#include "auth/session_key.h"
#include "auth_test_support.h"

namespace {

const Bytes kChallenge = FromHex("000102030405060708090a0b0c0d0e0f");  // and a published vector

const std::string kPlain =  // of both publications
    "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
    "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710";

// NIST SP 800-38A, F.2.1 and F.2.2: CBC-AES128.
TEST(Aes128Cbc, PublishedVectorsBothWays) {
  const SecretBytes key(FromHex(kTestAes128Key));
  const Bytes plain = FromHex(kPlain);
  const Bytes cipher = FromHex(
      "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2"
      "73bed6b8e3c1743b7116e69e222295163ff1caa1681fac09120eca307586e1a7");
  EXPECT_EQ(Aes128Cbc(CipherDirection::kEncrypt, key, kChallenge, plain), cipher);
  EXPECT_EQ(Aes128Cbc(CipherDirection::kDecrypt, key, kChallenge, cipher), plain);
  // Without padding a broken block, and a key or vector of another size, have no result.
  EXPECT_TRUE(Aes128Cbc(CipherDirection::kEncrypt, key, kChallenge, Bytes(15)).empty());
  EXPECT_TRUE(Aes128Cbc(CipherDirection::kEncrypt, key, Bytes(15), plain).empty());
  EXPECT_TRUE(Aes128Cbc(CipherDirection::kEncrypt, SecretBytes(32), kChallenge, plain).empty());
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

// Worked out one byte and one bit at a time, as the firmware does. Every bit of the mask word that
// decides something is seen both set and clear.
TEST(SessionKey, AgreesWithTheFirmware) {
  const std::tuple<uint32_t, uint32_t, MixConstants, uint32_t> cases[] = {
      {0x1FB17C23, 0xA170B338, {0xF28C105D, 0x39263059}, 0x8D3FC32C},
      {0xDBC496CB, 0x6B4CB242, {0x2217BEAD, 0x4A23D596}, 0x2BEFEBCC},
      {0x2E44158B, 0x923A7369, {0x1A61DBE2, 0x94E3BF91}, 0x9EDC3C71},
      {0x8C38FB29, 0x907A70C3, {0xB64CE422, 0x1012F037}, 0xD7C24EA0},
      {0x0F4205B4, 0x7F150524, {0x9E7769B1, 0x34B9B5DF}, 0xD4A49226},
      {0xA5AA3C81, 0xAE658F33, {0x93F448B3, 0xFE3B890B}, 0x66CA9F03},
      {0x62C33A4F, 0x58D5563D, {0xE3151288, 0xAB2CD31E}, 0x7F830A5B},
      {0x83F73F16, 0xA7ABE1C2, {0xF341E07A, 0x9E1A8EF4}, 0xDDF9C0E3},
  };
  for (const auto& [crc, maskword, constants, key] : cases) {
    EXPECT_EQ(MixSessionKey(crc, maskword, constants), key) << maskword;
  }
}

TEST(Algorithms, AnswerWithTheirOwnKeysAndVerifyNothingElse) {
  const KeyedRoot root;
  const AuthKeys keys = LoadAuthKeys(kAuthKeysPath);
  const std::map<int, Bytes> expected = {
      {1, FromHex("0d158f58")},  // worked out by hand with the keys of WriteKeys
      {2, FromHex("cb26cc86")},  // the second mask word has bit 1 set
      {3, Aes256CmacTag(SecretBytes(FromHex(kTestAes256Key)), kChallenge)},
      {4, {}}};
  Bytes other_challenge = kChallenge;
  other_challenge[7] ^= 1;
  for (const auto& [id, answer] : expected) {
    const auto algorithm = CreateAuthAlgorithm(id);
    EXPECT_TRUE(algorithm->Compute(Bytes(15)).empty()) << id;
    EXPECT_TRUE(algorithm->Compute(Bytes(17)).empty()) << id;
    Bytes response = algorithm->Compute(kChallenge);
    if (id == 4) {
      ASSERT_EQ(response.size(), 32U);
      EXPECT_NE(response, algorithm->Compute(kChallenge)) << "each draws its own vector";
    } else {
      EXPECT_EQ(response, answer) << id;
    }
    EXPECT_TRUE(VerifyAuthResponse(id, keys, kChallenge, response)) << id;
    EXPECT_FALSE(VerifyAuthResponse(id, keys, other_challenge, response)) << id;
    EXPECT_FALSE(VerifyAuthResponse(id, AuthKeys(), kChallenge, response)) << id;
    EXPECT_FALSE(VerifyAuthResponse(id, keys, kChallenge, {})) << id;
    response.back() ^= 1;
    EXPECT_FALSE(VerifyAuthResponse(id, keys, kChallenge, response)) << id;
  }
  EXPECT_EQ(CreateAuthAlgorithm(0), nullptr);
  EXPECT_EQ(CreateAuthAlgorithm(5), nullptr);
}

TEST(AuthAlgorithmId, IsADecimalNumber) {
  EXPECT_EQ(ParseAuthAlgorithmId("3"), 3);
  EXPECT_EQ(ParseAuthAlgorithmId(" 4\t\r"), 4);
  for (const char* text : {"", " ", "three", "3x", "0x3", "99999999999"}) {
    EXPECT_EQ(ParseAuthAlgorithmId(text), kNoAuthAlgorithm) << text;
  }
}

}  // namespace
