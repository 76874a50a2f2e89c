#include "variables/table_rules.h"

#include "support/table_fixture.h"
#include "variables/config_folder.h"
#include "variables/monitor_tables.h"

namespace {

// What a table has to have. Its first line is 2, the row of a test stands on line 6.
constexpr char kSoundRows[] =
    "1,1,0x01,,,PN,0,string,Heron-16,,,,,Device,16\n"
    "1,2,0x01,,,SN,0,string,0007,,,,,Device,16\n"
    "2,1,,0x10,1,Restart,0,raw,,,,,,,0\n"
    "2,2,,0x25,1,Reset,0,raw,,,,,,,0\n";

// What is found, without the file's name: warnings in round brackets, a line each.
std::string Listed(const TableFaults& faults) {
  std::string text;
  for (const TableFault& fault : faults) {
    const std::string reason = fault.text.substr(fault.text.find(".csv") + 4) + '\n';
    text += fault.severity == TableFault::Severity::kWarning ? "(" + reason : reason;
  }
  return text;
}

std::string FaultsOf(const std::string& rows, const std::string& model = "Heron") {
  return Listed(LoadModelTable(TableFile(kTableHeader + rows, model).config(), model).faults);
}

TEST(TableRules, NameTheRowAndWhatToWrite) {
  const std::string cases[][2] = {
      {"", ""},
      {"3,1,0x11,0x12,1,A,1,uint8,256,,,,,Scan", "DefaultValue \"256\" is no value of type uint8"},
      {"3,1,0x11,0x66,1,A,1,uint8,,,,,,Scan", "written with 0x66, which asks for the challenge"},
      {"3,1,0x11,224,1,A,1,uint8,,,,,,Scan", "written with 224, which answers the challenge"},
      {"3,1,0x11,0x10,1,A,1,uint8,,,,,,Scan", "with 0x10, which restarts the lidar"},
      {"3,1,0x25,,,A,0,uint8,,,,,,Scan", "Get 0x25 is the Set of line 5 as well"},
      {"3,1,0x21,,,A,0,uint8,,,,,,Scan", "with 0x21, which writes the network settings"},
      {"3,1,0x20,0x21,1,A,1,uint8,,,,,,Scan\n4,1,0x41,0x45,1,B,1,uint8,,,,,,Scan", ""},
      {"3,1,0x11,0x22,1,A,0,raw,,,,,,Scan,40\n3,2,0x11,0x22,2,B,0,raw,,,,,,Scan,2",
       "has to be one raw variable of 42 bytes, alone in 0x22"},
      {"3,1,0x11,0x22,1,A,0,raw,0106,,,,,Scan,42", "DefaultValue is no field-of-view table"},
      {"3,1,0x11,,,A,0,string,,monitor,,,,Scan,4\n3,2,0x13,,,B,0,string,,monitor,,,,Device,4",
       ", line 7: line 6 makes \"Scan\" the monitor page already"},
      {"3,1,,,,A,0,raw,,file,,,,Up,0\n3,2,0x11,0x12,1,B,1,uint8,,,,,,Up",
       ", line 7: \"B\" cannot be saved: \"Up\" has no Save because of line 6"},
      {"3,1,0x5A01,,,Config File,0,raw,,,,,,Device,0", "it has to be raw with VarLen 0 and on no"},
      {"0,page,Device,One,two", "(, line 6: the directive \"page\" takes the page's name"},
      {"0,page,Device", "(, line 6: the directive \"page\" does nothing; write the page's name"},
      {"0,page,Devise,Who", "(, line 6: there is no page \"Devise\""},
      {"0,page,Device,One\n0,page,Device,Two", "(, line 7: line 6 is a \"page\" of \"Device\""},
      {"0,group,1,Numbers\n0,group,9,None", "(, line 7: there is no row with the GroupID \"9\""},
      {"0,log,Nobody", ", line 6: there is no variable \"Nobody\" that could be downloaded"},
      {"0,log,PN", "\"PN\" is downloaded as a file"},
      {"3,1,0x11,0x23,1,A,1,uint8,,,,,,Scan", "(, line 6: Set 0x23 is a command that some lidars"},
      {"3,1,0x11,,,A,0,uint8,,,,,, Device", "(, line 6: FunctionModule \" Device\" has blanks"},
      {"0,future,x", "(, line 6: the directive \"future\" is unknown and does nothing"},
  };
  for (const auto& [rows, fault] : cases) {
    const std::string faults = FaultsOf(kSoundRows + rows + '\n');
    EXPECT_EQ(faults.empty(), fault.empty()) << faults << " instead of " << fault;
    EXPECT_NE(faults.find(fault), std::string::npos) << faults << " instead of " << fault;
  }
}

TEST(TableRules, SayHowToSaveWhatASpreadsheetWroteOtherwise) {
  const std::pair<std::string, const char*> files[] = {
      {"GroupID;Index;Get\n1;1;0x01\n", ", line 1: the cells are separated by semicolons or tabs"},
      {"GroupID\tIndex\n1\t1\n", ", line 1: the cells are separated by semicolons or tabs"},
      {std::string("\xFF\xFEG\0r\0", 6), ": is saved as UTF-16; save it as UTF-8"}};
  for (const auto& [text, fault] : files) {
    const LoadedTable table = LoadModelTable(TableFile(text, "Heron").config(), "Heron");
    EXPECT_TRUE(table.rows.empty());
    EXPECT_NE(Listed(table.faults).find(fault), std::string::npos) << Listed(table.faults);
  }
}

TEST(TableRules, AskForWhatEveryModelHas) {
  const std::string faults = FaultsOf("3,1,0x11,,,A,0,uint8,,,,,,Scan\n");
  for (const char* fault :
       {": there is no variable \"PN\"", ": there is no variable \"SN\"",
        ": there is no variable \"Restart\"; write the row 4,1,,0x10,1,Restart,0,raw,,,,,,,0,0,,",
        ": there is no variable \"Reset\"; write the row 4,1,,0x25,1,Reset,0,raw,,,,,,,0,0,,"}) {
    EXPECT_NE(faults.find(fault), std::string::npos) << faults << " without " << fault;
  }
  EXPECT_EQ(FaultsOf(kSoundRows, "Hen"), "");
  EXPECT_EQ(FaultsOf(kSoundRows, "Orca").rfind("(, line 2: a lidar with the DefaultValues", 0), 0U);
  // A maintenance command is one of serial models; asking with it is what their tables do.
  const std::string serial = FaultsOf(std::string(kSoundRows) +
                                          "3,1,0x4F,,,A,0,uint8,,,,,,Device\n"
                                          "4,1,0x40,0x41,1,B,1,uint8,,,,,,Device\n",
                                      "Lumo-He");
  EXPECT_EQ(serial.find("\"A\""), std::string::npos);
  EXPECT_NE(serial.find("\"B\" cannot be written with 0x41"), std::string::npos) << serial;
}

TEST(TableRules, WhatMustNotBeSentCannotBe) {
  const std::string rows = std::string(kSoundRows) +
                           "3,1,0x11,0x66,1,A,1,uint8,,,,,,Scan\n"
                           "4,1,0xE0,0x12,1,B,0,uint8,,,,,,Scan\n";
  const ConfigParser table(
      LoadModelTable(TableFile(kTableHeader + rows, "Heron").config(), "Heron"));
  EXPECT_TRUE(FindVar(table, "A").set_cmd.empty());
  EXPECT_FALSE(CanBeChanged(FindVar(table, "A")));
  EXPECT_TRUE(table.WrittenBy("0x66").empty());
  EXPECT_TRUE(FindVar(table, "B").get_cmd.empty());
  EXPECT_TRUE(table.WrittenBy("0x12").empty()) << "A may be missing there";
  EXPECT_EQ(FindVar(table, "Reset").set_cmd, "0x25");
}

// A new model breaks no test, and a table that breaks a rule does.
TEST(TableRules, HoldForEveryTableThatShips) {
  const ConfigFolder folder(TEVRON_SHIPPED_CONFIG);
  for (const std::string& model : folder.Models()) {
    const ConfigParser table(LoadModelTable(folder, model));
    TableFaults faults = table.Faults();
    for (const std::string& version : ListMonitorVersions(folder, model)) {
      const std::string path = MonitorTablePath(folder, model, version);
      EXPECT_NE(WithMonitorTable(table, path, &faults), nullptr) << path;
    }
    EXPECT_EQ(Listed(faults), "") << model;
  }
}

}  // namespace
