#include "auth/auth_keys.h"

#include <gtest/gtest.h>

#include <set>

#include "auth/auth_algorithm.h"
#include "auth_test_support.h"

namespace {

TEST(AuthKeys, EachDamagedValueCostsOnlyItsOwnAlgorithms) {
  const KeyedRoot root;
  const std::pair<const char*, std::set<int>> damages[] = {
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
  for (const auto& [line, lost] : damages) {
    root.WriteKeys(line);
    for (int id = 1; id <= 4; ++id) {
      EXPECT_EQ(CreateAuthAlgorithm(id) == nullptr, lost.count(id) == 1) << line << " id " << id;
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
  const KeyedRoot root;
  const auto warning_at = [](perms permissions) {
    std::filesystem::permissions(kAuthKeysPath, permissions);
    return AuthKeyFileWarning(kAuthKeysPath);
  };
  EXPECT_NE(warning_at(perms::owner_read | perms::others_read).find(kAuthKeysPath),
            std::string::npos);
  EXPECT_EQ(warning_at(perms::owner_read | perms::owner_write), "");
  root.WriteKeys("demo=true\n");
  EXPECT_EQ(warning_at(perms::owner_read | perms::others_read), "");
}

}  // namespace
