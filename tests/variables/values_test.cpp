#include <atomic>
#include <thread>

#include "variables/table_test.h"

namespace {

using Bytes = std::vector<uint8_t>;

class ValuesTest : public TableTest {
 protected:
  void SetUp() override {
    Load(
        "1,1,0x01,0x02,1,Speed,1,uint8,3\n"
        "1,2,0x01,0x02,2,Heater,1,uint8,0,switch:20..80\n"
        "1,3,0x01,0x02,3,Lamp,1,uint8,0,switch\n");
  }
};

TEST_F(ValuesTest, AnEditStaysUntilItIsDropped) {
  EXPECT_FALSE(parser_.ValueOf(Var("Speed")).has_bytes);
  parser_.Edit(Var("Speed"), "7");
  parser_.Edit(Var("Lamp"), "1");
  parser_.StoreReading(Var("Speed"), "9", {9});
  EXPECT_EQ(parser_.ValueOf(Var("Speed")).text, "7");
  EXPECT_TRUE(parser_.ValueOf(Var("Speed")).edited);
  EXPECT_EQ(parser_.ValueOf(Var("Speed")).bytes, Bytes{9});
  parser_.DropEdits({&Var("Speed"), &Var("Lamp")});
  EXPECT_EQ(parser_.ValueOf(Var("Speed")).text, "9");
  EXPECT_FALSE(parser_.ValueOf(Var("Speed")).edited);
  EXPECT_EQ(parser_.ValueOf(Var("Lamp")).text, "0") << "nothing was read: the default";
}

TEST_F(ValuesTest, ASwitchComesBackOnAsItWas) {
  EXPECT_EQ(parser_.SwitchOnText(Var("Heater")), "20");
  EXPECT_EQ(parser_.SwitchOnText(Var("Lamp")), "1");
  parser_.StoreReading(Var("Heater"), "55", {55});
  parser_.Edit(Var("Heater"), "0");
  EXPECT_EQ(Var("Heater").switch_index, "0");
  EXPECT_EQ(parser_.SwitchOnText(Var("Heater")), "55");
}

TEST_F(ValuesTest, TextAndBytesOfAValueBelongTogether) {
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
