#include "auth/auth_algorithm.h"

#include "auth/aes.h"
#include "auth/session_key.h"
#include "auth_test_support.h"

namespace {

// Also the vector of the published examples.
const Bytes kChallenge = FromHex("000102030405060708090a0b0c0d0e0f");

const std::string kPlain =  // of both publications
    "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
    "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710";

// NIST SP 800-38A, F.2.1 and F.2.2: CBC-AES128.
TEST(Aes128Cbc, PublishedVectorsBothWays) {
  const SecretBytes key(FromHex(kTestAes128Key));
  const Bytes& vector = kChallenge;
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
  EXPECT_EQ(Aes256CmacTag(key, FromHex(kPlain.substr(0, 80))),
            FromHex("aaf3d8f1de5640c232f5b169b9c911e6"));
  EXPECT_EQ(Aes256CmacTag(key, FromHex(kPlain)), FromHex("e1992190549f6ed5696a2c056c315410"));
}

TEST(SessionKey, AgreesWithAnIndependentImplementation) {
  // Worked out one bit at a time, apart from the program: every byte that the mask word can pick,
  // each with and without the exchange of halves.
  const uint32_t cases[][5] = {
      {0x38D48B63U, 0x0E2008CCU, 0xDEE84FEFU, 0xD4D1E6BDU, 0xBC53D3D4U},
      {0x34EB8BE6U, 0x5D1CDC74U, 0xEB2A1590U, 0xFABCE849U, 0xCD7C5D82U},
      {0x7D088408U, 0x16FF82E4U, 0x9C9B3EE7U, 0x659087BEU, 0xEE189A64U},
      {0xC412899BU, 0x5AA9CA70U, 0x84B70A9EU, 0x7C944ED0U, 0xD0EFE180U},
      {0x4BFB1E07U, 0xFDA630CEU, 0x300E7F8FU, 0xCEEB8C71U, 0xA46A6B9EU},
      {0x14AB75B5U, 0xA642EFE7U, 0xBD0A6C50U, 0xD1C8F81BU, 0x4387E672U},
      {0x70F9A42CU, 0x3E1720CFU, 0x2886FECBU, 0xC3ADEC41U, 0xE19F40D2U},
      {0xE1438DAFU, 0x1C63FE1EU, 0x462A87D4U, 0x34437C56U, 0x51BE5ADBU},
  };
  for (const auto& [crc, maskword, c1, c2, key] : cases) {
    EXPECT_EQ(MixSessionKey(crc, maskword, {c1, c2}), key) << std::hex << crc;
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
  ASSERT_EQ(first.size(), 32U);
  EXPECT_EQ(
      Aes128Cbc(CipherDirection::kDecrypt, SecretBytes(FromHex(kTestAes128Key)),
                Bytes(first.begin() + 16, first.end()), Bytes(first.begin(), first.begin() + 16)),
      kChallenge)
      << "the vector follows the cipher text";
  EXPECT_NE(CreateAuthAlgorithm(4)->Compute(kChallenge), first) << "the vector is drawn anew";
  EXPECT_EQ(CreateAuthAlgorithm(0), nullptr);
  EXPECT_EQ(CreateAuthAlgorithm(5), nullptr);
}

TEST_F(Algorithms, VerifyTheirOwnResponsesAndNothingElse) {
  const AuthKeys keys = LoadAuthKeys(kAuthKeysPath);
  Bytes other_challenge = kChallenge;
  other_challenge[7] ^= 1;
  for (const auto& [id, factory] : AuthAlgorithmFactories()) {
    const auto algorithm = factory();
    EXPECT_TRUE(algorithm->Compute(Bytes(15)).empty()) << id;
    EXPECT_TRUE(algorithm->Compute(Bytes(17)).empty()) << id;
    Bytes response = algorithm->Compute(kChallenge);
    EXPECT_TRUE(VerifyAuthResponse(id, keys, kChallenge, response)) << id;
    EXPECT_FALSE(VerifyAuthResponse(id, keys, other_challenge, response)) << id;
    EXPECT_FALSE(VerifyAuthResponse(id, AuthKeys(), kChallenge, response)) << id;
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
