#include "auth/auth_config.h"

#include <gtest/gtest.h>

#include "auth_test_support.h"

namespace {

constexpr char kHeader[] =
    "Model,Enable,AlgorithmID,ProbeCmd,ChallengeCmd,ResponseCmd,ProtectedCmds,ProbeValueOffset,"
    "ProbeValueLen,ProbeEndian\n";

class AuthConfigTable : public testing::Test {
 protected:
  AuthConfig Load(const std::string& rows, const std::string& model = "Osprey") {
    root_.Write("auth.csv", kHeader + rows);
    return LoadAuthConfig("auth.csv", model);
  }
  /// The reason and the place of the failure, or "".
  std::string FailureOf(const std::string& rows) {
    try {
      Load(rows);
    } catch (const AuthConfigError& error) {
      return std::string(error.what()) + " @ " + error.place();
    }
    return "";
  }
  InstallRoot root_;
};

TEST_F(AuthConfigTable, ReadsEveryCellOfTheModelsRow) {
  const AuthConfig config = Load(
      "Orca,1,1,0x1,0x2,0x3,0x4,0,1,big\n"
      "Osprey,1, 3 ,\t0X000000D0 ,61,\"0xE1\r\",0x21|22 |0X23,-2, 12 ,little\n");
  EXPECT_TRUE(config.enabled);
  EXPECT_EQ(config.algorithm_id, 3);
  EXPECT_EQ(config.probe_cmd, 0xD0U);
  EXPECT_EQ(config.challenge_cmd, 0x61U);
  EXPECT_EQ(config.response_cmd, 0xE1U);
  EXPECT_EQ(config.protected_cmds, (std::set<uint8_t>{0x21, 0x22, 0x23}));
  EXPECT_EQ(config.probe_offset, -2);
  EXPECT_EQ(config.probe_len, 12);
  EXPECT_TRUE(config.probe_little_endian);
  EXPECT_TRUE(Load("Osprey,1,3,DF,66,E0,,0,1,big\n").protected_cmds.empty()) << "a legal choice";
}

TEST_F(AuthConfigTable, OnlyTheDigitOneEnablesAndTheRestIsNotReadWithoutIt) {
  for (const char* enable : {"01", "true", "", "0", " 1"}) {
    const AuthConfig config = Load(std::string("Osprey,") + enable + ",4,,,,||,x,y,little\n");
    EXPECT_FALSE(config.enabled) << enable;
    EXPECT_EQ(config.probe_cmd, 0xDFU);
  }
  EXPECT_FALSE(Load("Osprey,1,4,1,2,3,4,0,1,big\n", "Ospre").enabled);
}

TEST_F(AuthConfigTable, NamesTheCellThatCannotBeUsed) {
  EXPECT_EQ(FailureOf("Orca,0\nOsprey,1,3,DF,66,0x,21,0,1,big\n"),
            "empty auth cmd @ auth.csv, line 3, column ResponseCmd");
  const char* const cases[][2] = {
      {" ,66,E0,21,0,1", "empty auth cmd @ auth.csv, line 2, column ProbeCmd"},
      {"DF,66,E0,21||22,0,1", "empty hex byte @ auth.csv, line 2, column ProtectedCmds"},
      {"DF,66,E0,21|,0,1", "empty hex byte"},
      {"DF,66,E0, | ,0,1", "empty hex byte"},
      {"DG,66,E0,21,0,1", ""},
      {"DF,66,1FFFFFFFF,21,0,1", ""},
      {"DF,66,E0,21,,1", ""},
      {"DF,66,E0,21,0,0x1", ""},
  };
  for (const auto& [cells, begin] : cases) {
    const std::string failure = FailureOf(std::string("Osprey,1,3,") + cells + ",big\n");
    EXPECT_NE(failure, "") << cells;
    EXPECT_EQ(failure.rfind(begin, 0), 0U) << failure;
  }
}

}  // namespace
