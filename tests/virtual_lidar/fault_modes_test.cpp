#include "faults/fault_modes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace {

TEST(FaultModes, StandInTheDocumentationWordForWord) {
  std::ifstream file(SOURCE_FOLDER "/docs/virtual-lidar.md");
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  for (const FaultMode& mode : FaultModes()) {
    const std::string argument = *mode.argument == '\0' ? "" : std::string("=") + mode.argument;
    const std::string row = "| `" + (mode.name + argument) + "` | " + mode.sentence + " |";
    EXPECT_NE(page.find(row), std::string::npos) << row;
  }
}

TEST(FaultModes, ReadsOrders) {
  FaultOrder order;
  std::string error;
  ASSERT_TRUE(ParseFaultOrder("delay=250@0x2C#3", &order, &error)) << error;
  EXPECT_EQ(order.fault, Fault::kDelay);
  EXPECT_EQ(order.argument, 250U);
  EXPECT_EQ(order.command, uint8_t{0x2C});
  EXPECT_EQ(order.times, 3U);
  ASSERT_TRUE(ParseFaultOrder("drop@33", &order, &error)) << error;
  EXPECT_EQ(order.command, uint8_t{33});
  EXPECT_FALSE(order.times.has_value());
  ASSERT_TRUE(ParseFaultOrder("drop#2-4", &order, &error)) << error;
  EXPECT_EQ(order.spared, 1U);
  EXPECT_EQ(order.times, 3U);

  for (const char* text : {"", "dorp", "Drop", "drop=1", "delay", "delay=", "delay=0", "delay=1x",
                           "return-code=256", "drop@", "drop@256", "drop@0x", "drop@-1", "drop#0",
                           "drop#", "drop#0-2", "drop#3-2", "drop#2-", "silent-after=1@7"}) {
    error.clear();
    EXPECT_FALSE(ParseFaultOrder(text, &order, &error)) << text;
    EXPECT_FALSE(error.empty()) << text;
  }
}

TEST(FaultBox, StrikesTheCommandsAndTimesAskedFor) {
  FaultBox box({{Fault::kDelay, 10, uint8_t{0x20}, 2U}, {Fault::kDelay, 20, {}, {}}});
  EXPECT_EQ(box.Strike(Fault::kDelay, 0x20), 10U);
  EXPECT_EQ(box.Strike(Fault::kDelay, 0x21), 20U);
  EXPECT_EQ(box.Strike(Fault::kDelay, 0x20), 10U);
  EXPECT_EQ(box.Strike(Fault::kDelay, 0x20), 20U) << "the first order is used up";
  EXPECT_FALSE(box.Strike(Fault::kDrop, 0x20).has_value());
  EXPECT_EQ(box.TakeStruck(), std::vector<std::string>(4, "delay"));
  EXPECT_TRUE(box.TakeStruck().empty());

  FaultBox second({{Fault::kDrop, 0, {}, 1U, 1U}});
  EXPECT_FALSE(second.Strike(Fault::kDrop, 0x20).has_value());
  EXPECT_TRUE(second.Strike(Fault::kDrop, 0x20).has_value());
  EXPECT_FALSE(second.Strike(Fault::kDrop, 0x20).has_value());
}

}  // namespace
