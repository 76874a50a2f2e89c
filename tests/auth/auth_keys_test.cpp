#include "auth/auth_keys.h"

#include "auth/auth_algorithm.h"
#include "auth_test_support.h"

namespace {

TEST(AuthKeys, EachDamagedValueCostsOnlyItsOwnAlgorithms) {
  const InstallRoot root;
  struct Damage {
    const char* line;
    std::vector<int> lost;
  };
  const Damage damages[] = {
      {"aes128_key=2b7e151628aed2a6abf7158809cf4f3", {4}},    // a digit short
      {"aes128_key=2b7e151628aed2a6abf7158809cf4f3c0", {4}},  // a digit long
      {"aes256_key=", {3}},
      {"maskword_1=123456789", {1}},
      {"maskword_2=0x", {2}},
      {"mix_c1=12 34", {1, 2}},
      {"mix_c2=1234567g", {1, 2}},
      {"[other]\naes128_key=bad", {}},  // not in the group of the keys
      {"; aes128_key=bad", {}},
  };
  for (const Damage& damage : damages) {
    root.WriteKeys(damage.line);
    for (int id = 1; id <= 4; ++id) {
      const bool expected_lost =
          std::find(damage.lost.begin(), damage.lost.end(), id) != damage.lost.end();
      EXPECT_EQ(CreateAuthAlgorithm(id) == nullptr, expected_lost) << damage.line << " id " << id;
    }
  }
  std::filesystem::remove(kAuthKeysPath);
  EXPECT_EQ(CreateAuthAlgorithm(1), nullptr);
}

TEST(AuthKeys, ShortWordsAreRightAligned) {
  const InstallRoot root;
  root.Write("keys.ini", "\xEF\xBB\xBF[keys]\r\n mask = 1\r\nmaskword_1 = 0x5A3\r\n");
  const AuthKeys keys = LoadAuthKeys("keys.ini");
  EXPECT_EQ(Bytes(keys.maskword_1.data(), keys.maskword_1.data() + keys.maskword_1.size()),
            FromHex("000005a3"));
}

TEST(AuthKeys, AFileThatOthersCanReadIsReportedUnlessItIsTheDemonstration) {
  using std::filesystem::perms;
  const InstallRoot root;
  root.WriteKeys();
  std::filesystem::permissions(kAuthKeysPath, perms::owner_read | perms::others_read);
  EXPECT_NE(AuthKeyFileWarning(kAuthKeysPath).find(kAuthKeysPath), std::string::npos);
  std::filesystem::permissions(kAuthKeysPath, perms::owner_read | perms::owner_write);
  EXPECT_EQ(AuthKeyFileWarning(kAuthKeysPath), "");
  root.WriteKeys("demo=true\n");
  std::filesystem::permissions(kAuthKeysPath, perms::owner_read | perms::others_read);
  EXPECT_EQ(AuthKeyFileWarning(kAuthKeysPath), "");
  EXPECT_EQ(AuthKeyFileWarning("nowhere.ini"), "");
}

}  // namespace
