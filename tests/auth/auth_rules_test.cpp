#include "auth/auth_rules.h"

#include "auth/auth_config.h"
#include "auth/auth_keys.h"
#include "auth_test_support.h"
#include "support/table_fixture.h"

namespace {

// A folder with the table of a model "Heron" that has two commands, and with keys.
struct HeronFolder : KeyedRoot {
  HeronFolder() {
    Write("Config/varID/Heron.csv",
          std::string(kTableHeader) + "1,1,0x11,0x12,,Rate,1,uint8,,,,,,Scan\n");
  }
  void WriteAuth(const std::string& rows, const std::string& folder = "Config") const {
    Write(folder + "/auth_config.csv", kAuthTableHeader + rows);
  }
  // The texts behind the file's name, a line each.
  std::string Faults() const {
    const ConfigParser table(LoadTable(config.TableOf("Heron")));
    TableFaults faults;
    CheckAuth(config, "Heron", SerialFamily::kNone, table, &faults);
    std::string text;
    for (const TableFault& fault : faults) {
      text += (fault.severity == TableFault::Severity::kWarning ? "(" : "") +
              fault.text.substr(fault.text.find(".csv") + 4) + '\n';
    }
    return text;
  }

  const ConfigFolder config{"./Config"};
};

TEST(AuthRules, NameWhatIsWrongWithARowAndWhatToWrite) {
  const HeronFolder root;
  const char* const cases[][2] = {
      {"Heron,1,3,DF,66,E0,12|83|0x25,0,1,big", ""},
      {"Heron,0,9,,,,||,,,", ""},
      {"Heron,,9,,,,||,,,", "Enable: \"\" leaves model \"Heron\" without auth"},
      {"Heron,1,3,DF,66,E0,zz,0,1,big", "ProtectedCmds: \"zz\" is no hexadecimal"},
      {"Heron,yes,3,DF,66,E0,12,0,1,big", "Enable: \"yes\" leaves model \"Heron\" without auth"},
      {"Heron, 1,3,DF,66,E0,12,0,1,big", "write 1, without blanks"},
      {"Heron,1,5,DF,66,E0,12,0,1,big", "AlgorithmID: \"5\" is no algorithm"},
      {"Heron,1,3,1DF,66,E0,12,0,1,big", "ProbeCmd: \"1DF\" is longer than a byte"},
      {"Heron,1,3,DF,66,0x66,12,0,1,big", "ResponseCmd: 0x66 is another command of the handshake"},
      {"Heron,1,3,DF,66,E0,12|66,0,1,big", "ChallengeCmd: 0x66 is one of the ProtectedCmds"},
      {"Heron,1,3,11,66,E0,12,0,1,big", "ProbeCmd: 0x11 is a command of the variable table, too"},
      {"Heron,1,3,DF,66,E0,12|0x112,0,1,big", "ProtectedCmds: \"0x112\" is longer than a byte"},
      {"Heron,1,3,DF,66,E0,12|99,0,1,big", "(, line 2: column ProtectedCmds: nothing is sent "},
      {"Heron,1,3,DF,66,E0,,0,1,big", "(, line 2: column ProtectedCmds: no command is protected"},
      {"Heron,1,3,DF,66,E0,12,-1,1,big", "ProbeValueOffset: -1 is no place"},
      {"Heron,1,3,DF,66,E0,12,255,1,big", "ProbeValueOffset: 255 is no place"},
      {"Heron,1,3,DF,66,E0,12,0,0,big", "ProbeValueLen: 0 bytes are no number, so that no auth"},
      {"Heron,1,3,DF,66,E0,12,0,3,big", "ProbeValueLen: 3 bytes are no number; write 1, 2, 4 or"},
      {"Heron,1,3,DF,66,E0,12,0,1,Little", "ProbeEndian: \"Little\" counts as big"},
      {" Heron,1,3,DF,66,E0,12,0,1,big", "write \"Heron\", without blanks"},
      {"Heron,0\nHeron,1,3,DF,66,E0,12,0,1,big", ", line 3: model \"Heron\" has its row on line 2"},
      {"\"Heron\"x,1", "; mend the row, since no model"},
      {"H\xE4ron,1", "Model is no UTF-8 text; mend the row"},
  };
  for (const auto& [row, fault] : cases) {
    root.WriteAuth(row);
    const std::string faults = root.Faults();
    EXPECT_EQ(faults.find('\n'), faults.empty() ? std::string::npos : faults.size() - 1) << faults;
    EXPECT_NE(faults.find(fault), std::string::npos) << faults << " instead of " << fault;
    EXPECT_EQ(faults.empty(), *fault == '\0') << faults;
  }
  root.WriteAuth("Heron,1,3,DF,66,E0,12,0,1,big");
  root.WriteKeys("aes256_key=12\n");
  EXPECT_NE(root.Faults().find("algorithm 3 needs the key aes256_key"), std::string::npos);
}

TEST(AuthRules, TheSitesRowsAndKeysStandInThePlaceOfThoseThatShip) {
  const HeronFolder root;
  const std::string ending = ",DF,66,E0,12,0,1,big\n";
  root.WriteAuth("Heron,1,3" + ending + "Orca,1,4" + ending);
  root.WriteAuth("Heron,1,1" + ending, "Config/site");
  EXPECT_EQ(AuthConfigOf(root.config, "Heron").algorithm_id, 1);
  EXPECT_EQ(AuthConfigOf(root.config, "Orca").algorithm_id, 4);

  root.Write("Config/site/auth_keys.ini", "[keys]\naes128_key=12\nmix_c1=1\n");
  const AuthKeys keys = LoadAuthKeys(root.config);
  EXPECT_TRUE(keys.aes128_key.empty()) << "the site's, which is malformed";
  EXPECT_FALSE(keys.aes256_key.empty());
  EXPECT_EQ(keys.mix_c1.data()[3], 1);

  // What the site wants cannot be known, so what ships does not count either.
  for (const char* broken : {"\"Heron\"x,0\n", "Heron,1,x", "Heron,0\nHeron,0\n"}) {
    root.WriteAuth(broken, "Config/site");
    EXPECT_THROW(AuthConfigOf(root.config, "Heron"), AuthConfigError) << broken;
    EXPECT_NE(root.Faults(), "") << broken;
  }
  std::filesystem::remove("Config/site/auth_config.csv");
  std::filesystem::create_directory("Config/site/auth_config.csv");
  EXPECT_THROW(AuthConfigOf(root.config, "Heron"), std::runtime_error);
  std::filesystem::remove("Config/site/auth_keys.ini");
  std::filesystem::create_directory("Config/site/auth_keys.ini");
  EXPECT_TRUE(LoadAuthKeys(root.config).aes256_key.empty());
}

}  // namespace
