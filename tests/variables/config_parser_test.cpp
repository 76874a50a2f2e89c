#include "variables/config_parser.h"

#include <atomic>
#include <thread>

#include "support/bytes.h"
#include "support/table_fixture.h"

namespace {

using ConfigParserTest = TableTest;

TEST_F(ConfigParserTest, FillsARecordFromEveryColumn) {
  Load(
      "4,11,0x11,0x5A12,1,Start,1,int16,2.50,-100..100,deg,0.5,,Scan,2,1,0.25,0x0aFF,01\n"
      "1,1,,,,Empty,,double,,,,,,,,,\n1,2,,,,Scaled,,raw,,,,0.5,,,7,,\n");
  EXPECT_EQ(output_, "");
  const VarInfo* var = &Var("Start");
  EXPECT_EQ(var->var_id, "4-11");
  EXPECT_EQ(var->get_cmd.str() + var->set_cmd.str(), "0x110x5A12");
  EXPECT_EQ(UnitSuffix(*var), " (deg)");
  EXPECT_EQ(var->coefficient, 0.5F);
  EXPECT_EQ(var->set_coefficient, 0.25F);
  EXPECT_EQ(parser_.ValueOf(*var).text, "2.50");
  EXPECT_EQ(var->function_module, "Scan");
  EXPECT_TRUE(var->timer_update);
  EXPECT_EQ(var->read->fixed_payload, (Bytes{0x0A, 0xFF}));
  EXPECT_EQ(var->write->fixed_payload, Bytes{0x01});

  EXPECT_EQ(Var("Empty").offset, 8);
  EXPECT_EQ(Var("Scaled").set_coefficient, 0.5F);
  EXPECT_EQ(LengthLimitOf(Var("Scaled")), 7);
}

TEST_F(ConfigParserTest, PlacesVariablesOneBehindTheOther) {
  Load(
      "1,1,0x01,,,A,0,uint16,,,,,,,,,,0x01\n"
      "1,2,0x01,,,B,0,uint8,,,,,,,,,,0x02\n"
      "1,3,0x01,0x02,1,C,1,uint32,,,,,,,,,,0x01\n"
      "1,4,0x01,0x02,2,D,1,MAC,,,,,,,,,,0x01\n"
      "1,5,0x01,0x02,3,E,1,uint8,,hidden,,,,,,,,0x02\n"
      "1,6,,,,F,1,uint8\n"
      "1,7,,0x03,1,G,1,raw,,,,,,,3,,\n"
      "1,8,,0x03,2,Shared Secret Key,1,raw,,,,,,,4,,\n");
  using Place = std::pair<int32_t, int32_t>;
  const auto place = [this](const char* cmd, const char* id) {
    Place found(-1, -1);
    const bool is_found = parser_.GetVarPosOffset(cmd, id, 32, found.first, found.second);
    EXPECT_EQ(is_found, found.first >= 0) << id;
    return found;
  };
  EXPECT_EQ(place("0x01", "1-1"), Place(0, 2));
  EXPECT_EQ(place("0x01", "1-4"), Place(6, 6));
  EXPECT_EQ(place("0x01", "1-5"), Place(1, 1));
  EXPECT_EQ(place("0x02", "1-4"), Place(4, 6));
  EXPECT_EQ(place("0x02", "1-5"), Place(10, 1));
  EXPECT_EQ(place("0x03", "1-8"), Place(0, 32)) << "the key has the length that is asked for";
  EXPECT_EQ(Var("Shared Secret Key").offset, 32);
  EXPECT_EQ(parser_.WrittenBy("0x02"),
            (std::vector<const VarInfo*>{&Var("C"), &Var("D"), &Var("E")}));

  testing::internal::CaptureStdout();
  EXPECT_EQ(place("0x02", "9-9"), Place(-1, -1));
  place("0x02", "1-6");
  place("0x77", "1-1");
  const std::string function = "ConfigParser::GetVarPosOffset(): ";
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            function + "ERROR. This var_id does not exist. Detail: var_id = 9-9, file_path = " +
                file_->path() + '\n' + function + "this var not supported. var_name = F\n" +
                function + "don't have this command\n");
}

TEST_F(ConfigParserTest, KeepsRowsOfGroupZeroAsDirectives) {
  Load("0,page,,Scan,,\"How it turns, and more\"\n1,1,0x01,,,A,0,uint8\n0,future\n");
  ASSERT_EQ(parser_.Directives().size(), 2U);
  EXPECT_EQ(parser_.Directives()[0].cells,
            (std::vector<std::string>{"page", "Scan", "How it turns, and more"}));
  EXPECT_EQ(parser_.Directives()[1].cells, std::vector<std::string>{"future"});
  EXPECT_EQ(parser_.Directives()[1].line, 4U);
  EXPECT_EQ(parser_.InTableOrder().size(), 1U);
}

TEST_F(ConfigParserTest, AMissingColumnStopsTheLoadAndLeavesNothing) {
  Load("1,1,0x01,0x02,1,A,1,uint8\n1,,\n");
  std::string header = kTableHeader;
  header.replace(header.find("VarLen,"), 7, "");
  const TableFile broken(header + "1,2,0x01,,,B,0,uint8\n");
  try {
    parser_.ExtractConfigInfo(broken.path());
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Can't find a column named VarLen");
  }
  EXPECT_TRUE(parser_.InTableOrder().empty());
  EXPECT_TRUE(parser_.Faults().empty());
  EXPECT_TRUE(parser_.WrittenBy("0x02").empty());
  EXPECT_EQ(parser_.FindByName("A"), nullptr);
}

TEST_F(ConfigParserTest, EachValueSaysWhatItIsWorth) {
  Load("1,1,0x01,0x02,1,Speed,1,uint8,3\n");
  const VarInfo& speed = Var("Speed");
  const auto shown = [&] {
    const ConfigParser::Value value = parser_.ValueOf(speed);
    return TextOf(value.state) + (' ' + value.text + ' ' + value.wanted);
  };
  EXPECT_EQ(shown(), "unread 3 ");
  parser_.StoreReading(speed, "5", {5});
  EXPECT_EQ(shown(), "read 5 ");
  parser_.Edit(speed, "7");
  EXPECT_EQ(shown(), "edited 7 ");
  parser_.StoreWritten(speed, "7", {7});
  EXPECT_EQ(shown(), "written 7 ");
  parser_.StoreReading(speed, "6", {6});
  EXPECT_EQ(shown(), "differs 6 7");
  parser_.StoreReading(speed, "7", {7});
  parser_.StoreReading(speed, "9", {9});
  EXPECT_EQ(shown(), "read 9 ");
  parser_.Edit(speed, "4");
  parser_.ForgetReadings();
  EXPECT_EQ(shown(), "edited 4 ");
  parser_.DropEdits({&speed});
  EXPECT_EQ(shown(), "unread 3 ");
}

TEST_F(ConfigParserTest, TextAndBytesOfAValueBelongTogether) {
  Load("1,1,0x01,0x02,1,Speed,1,uint8,3\n");
  std::atomic<bool> stop{false};
  std::thread writer([&] {
    for (uint8_t byte = 0; !stop; ++byte) {
      parser_.StoreReading(Var("Speed"), std::to_string(byte), {byte});
    }
  });
  bool together = true;
  for (int i = 0; i < 20000 && together; ++i) {
    const ConfigParser::Value value = parser_.ValuesOf({&Var("Speed")})[0];
    together = !value.has_bytes || value.text == std::to_string(value.bytes[0]);
  }
  stop = true;
  writer.join();
  EXPECT_TRUE(together);
}

}  // namespace
