#include "fault_modes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace {

TEST(FaultModes, ListsEveryModeOnceInTheOrderOfTheEnumeration) {
  std::set<std::string> names;
  for (size_t i = 0; i < FaultModes().size(); ++i) {
    const FaultMode& mode = FaultModes()[i];
    EXPECT_EQ(static_cast<size_t>(mode.fault), i) << mode.name;
    EXPECT_TRUE(names.insert(mode.name).second) << mode.name;
    EXPECT_NE(*mode.sentence, '\0') << mode.name;
    EXPECT_EQ(*mode.argument != '\0', mode.argument_max > 0) << mode.name;
  }
  EXPECT_EQ(static_cast<size_t>(Fault::kAuthRefuseResponse) + 1, names.size());
}

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

  for (const char* text :
       {"", "dorp", "drop=1", "delay", "delay=", "delay=0", "delay=1x", "return-code=256", "drop@",
        "drop@256", "drop@0x", "drop@-1", "drop#0", "drop#", "Drop"}) {
    error.clear();
    EXPECT_FALSE(ParseFaultOrder(text, &order, &error)) << text;
    EXPECT_FALSE(error.empty()) << text;
  }
}

TEST(FaultBox, StrikesTheCommandsAndTimesAskedFor) {
  FaultOrder twice{Fault::kDelay, 10, uint8_t{0x20}, 2U};
  FaultOrder always{Fault::kDelay, 20, std::nullopt, std::nullopt};
  FaultBox box({twice, always});
  EXPECT_EQ(box.Strike(Fault::kDelay, 0x20), 10U);
  EXPECT_EQ(box.Strike(Fault::kDelay, 0x21), 20U);
  EXPECT_EQ(box.Strike(Fault::kDelay, 0x20), 10U);
  EXPECT_EQ(box.Strike(Fault::kDelay, 0x20), 20U) << "the first order is used up";
  EXPECT_FALSE(box.Strike(Fault::kDrop, 0x20).has_value());
  EXPECT_EQ(box.TakeStruck(), std::vector<std::string>(4, "delay"));
  EXPECT_TRUE(box.TakeStruck().empty());

  FaultBox silent({{Fault::kSilentAfter, 2, std::nullopt, std::nullopt}});
  EXPECT_FALSE(silent.CountRequestAndCheckSilence());
  EXPECT_FALSE(silent.CountRequestAndCheckSilence());
  EXPECT_TRUE(silent.CountRequestAndCheckSilence());
}

}  // namespace
