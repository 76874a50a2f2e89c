#include "auth/auth_config.h"

#include <gtest/gtest.h>

#include "auth_test_support.h"

namespace {

AuthConfig Load(const std::string& rows, const std::string& model = "Osprey") {
  const InstallRoot root;
  root.Write("auth.csv", kAuthTableHeader + rows);
  return LoadAuthConfig("auth.csv", model);
}

TEST(AuthConfigTable, ReadsEveryCellOfTheModelsRow) {
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

TEST(AuthConfigTable, OnlyTheDigitOneEnablesAndTheRestIsNotReadWithoutIt) {
  for (const char* enable : {"01", "true", "", "0", " 1"}) {
    const AuthConfig config = Load(std::string("Osprey,") + enable + ",4,,,,||,x,y,little\n");
    EXPECT_FALSE(config.enabled) << enable;
    EXPECT_EQ(config.probe_cmd, 0xDFU);
  }
  EXPECT_FALSE(Load("Osprey,1,4,1,2,3,4,0,1,big\n", "Ospre").enabled);
}

TEST(AuthConfigTable, NamesTheCellThatCannotBeUsed) {
  const char* const cases[][2] = {
      {" ,66,E0,21,0,1", "empty auth cmd @ auth.csv, line 3, column ProbeCmd"},
      {"DF,66,0x,21,0,1", "empty auth cmd @ auth.csv, line 3, column ResponseCmd"},
      {"DF,66,E0,21||22,0,1", "empty hex byte @ auth.csv, line 3, column ProtectedCmds"},
      {"DF,66,E0,21|,0,1", "empty hex byte"},
      {"DF,66,E0, | ,0,1", "empty hex byte"},
      {"\"DF\"x,66,E0,21,0,1", "a quotation mark stands"},  // it may have been the model's row
      {"DG,66,E0,21,0,1", "\"DG\" is no"},
      {"DF,66,1FFFFFFFF,21,0,1", "\"1FFFFFFFF\" is no"},
      {"DF,66,E0,21,,1", "\"\" is no decimal"},
      {"DF,66,E0,21,0,0x1", "\"0x1\" is no decimal"},
      {"DF,66,E0,21|0x112,0,1", "\"0x112\" is longer than a byte"},  // and not 0x12
      {"DF,66,E0,21,0,1,big\nOsprey,0,", "model \"Osprey\" has its row on line 3 already"},
  };
  for (const auto& [cells, begin] : cases) {
    try {
      Load(std::string("Orca,0\nOsprey,1,3,") + cells + ",big\n");
      ADD_FAILURE() << cells;
    } catch (const AuthConfigError& error) {
      EXPECT_EQ((error.what() + (" @ " + error.place())).rfind(begin, 0), 0U)
          << error.text() << " instead of " << begin;
    }
  }
}

}  // namespace
