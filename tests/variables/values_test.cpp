#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "variables/config_parser.h"
#include "variables/table_file.h"

namespace {

using Bytes = std::vector<uint8_t>;

class ValuesTest : public testing::Test {
 protected:
  void SetUp() override {
    const TableFile file(std::string(kTableHeader) +
                         "1,1,0x01,0x02,1,Speed,1,uint8,3\n"
                         "1,2,0x01,0x02,2,Heater,1,uint8,0,switch:20..80\n"
                         "1,3,0x01,0x02,3,Lamp,1,uint8,0,switch\n"
                         "1,4,0x01,0x02,4,Table,1,raw,,,,,,,2\n");
    parser_.ExtractConfigInfo(file.path());
  }

  const VarInfo& Var(const char* name) { return *parser_.FindByName(name); }

  ConfigParser parser_;
};

TEST_F(ValuesTest, AReadingIsShownUntilTheNext) {
  EXPECT_EQ(parser_.ValueOf(Var("Speed")).text, "3");
  EXPECT_FALSE(parser_.ValueOf(Var("Speed")).has_bytes);
  parser_.StoreReading(Var("Speed"), "9", {9});
  const ConfigParser::Value value = parser_.ValueOf(Var("Speed"));
  EXPECT_EQ(value.text, "9");
  EXPECT_EQ(value.bytes, Bytes{9});
  EXPECT_TRUE(value.has_bytes);
  EXPECT_EQ(Var("Speed").current_val, "9");
  parser_.StoreBytes(Var("Table"), {1, 2});
  EXPECT_EQ(parser_.ValueOf(Var("Table")).text, "");
  EXPECT_EQ(parser_.ValueOf(Var("Table")).bytes, (Bytes{1, 2}));
}

TEST_F(ValuesTest, AnEditStaysUntilItIsDropped) {
  parser_.Edit(Var("Speed"), "7");
  parser_.StoreReading(Var("Speed"), "9", {9});
  EXPECT_EQ(parser_.ValueOf(Var("Speed")).text, "7");
  EXPECT_TRUE(parser_.ValueOf(Var("Speed")).edited);
  EXPECT_EQ(parser_.ValueOf(Var("Speed")).bytes, Bytes{9});
  parser_.DropEdits({&Var("Speed"), &Var("Lamp")});
  EXPECT_EQ(parser_.ValueOf(Var("Speed")).text, "9");
  EXPECT_FALSE(parser_.ValueOf(Var("Speed")).edited);

  parser_.Edit(Var("Lamp"), "1");
  parser_.DropEdits({&Var("Lamp")});
  EXPECT_EQ(parser_.ValueOf(Var("Lamp")).text, "0") << "nothing was read: the default";
}

TEST_F(ValuesTest, ASwitchComesBackOnAsItWas) {
  EXPECT_EQ(parser_.SwitchOnText(Var("Heater")), "20");
  EXPECT_EQ(parser_.SwitchOnText(Var("Lamp")), "1");
  parser_.StoreReading(Var("Heater"), "55", {55});
  parser_.Edit(Var("Heater"), "0");
  EXPECT_EQ(Var("Heater").switch_index, "0");
  EXPECT_EQ(parser_.SwitchOnText(Var("Heater")), "55");
  parser_.Edit(Var("Heater"), parser_.SwitchOnText(Var("Heater")));
  EXPECT_EQ(Var("Heater").switch_index, "1");
}

TEST_F(ValuesTest, TextAndBytesOfAValueBelongTogether) {
  std::atomic<bool> stop{false};
  std::thread writer([&] {
    for (int i = 0; !stop; ++i) {
      const auto byte = static_cast<uint8_t>(i);
      parser_.StoreReading(Var("Speed"), std::to_string(byte), {byte});
    }
  });
  for (int i = 0; i < 20000; ++i) {
    const ConfigParser::Value value = parser_.ValuesOf({&Var("Speed")})[0];
    if (value.has_bytes && value.text != std::to_string(value.bytes[0])) {
      ADD_FAILURE() << value.text << " beside byte " << int{value.bytes[0]};
      break;
    }
  }
  stop = true;
  writer.join();
}

}  // namespace
