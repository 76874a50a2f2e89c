#include "Platform/serial_port.h"

#include <gtest/gtest.h>

#include <future>
#include <numeric>

#include "support/bytes.h"
#include "support/pty_pair.h"

namespace kavel::lidar {
namespace {

using testing::PtyPair;

constexpr uint32_t kPatienceMs = 5000;
#ifdef _WIN32
constexpr const char* kNullDevice = "NUL";
#else
constexpr const char* kNullDevice = "/dev/null";
#endif

TEST(SerialPort, CarriesAllBytesBothWaysAtAnyRate) {
  Bytes every_byte(256);
  std::iota(every_byte.begin(), every_byte.end(), uint8_t{0});
  for (const uint32_t rate : {9600U, 115200U, 3000000U, 3125000U}) {
    PtyPair line;
    SerialPort port;
    ASSERT_TRUE(port.Open(line.path(), rate)) << port.LastError();
    EXPECT_EQ(port.baud_rate_bps(), rate);

    ASSERT_EQ(port.Write(every_byte.data(), every_byte.size(), kPatienceMs), 256);
    EXPECT_EQ(line.ReadExactly(256), every_byte) << "no byte is translated or swallowed";

    line.Write(every_byte);
    Bytes read(256);
    for (uint8_t& byte : read) {
      ASSERT_EQ(port.Read(&byte, 1, kPatienceMs), 1);
    }
    EXPECT_EQ(read, every_byte);
  }
}

TEST(SerialPort, SaysWhichPortCannotBeOpenedAndWhatToDo) {
  PtyPair line;
  const std::tuple<std::string, uint32_t, std::string, std::string> cases[] = {
      {"no-such-port", 115200, "no-such-port", "was not found"},
      {kNullDevice, 115200, kNullDevice, "is not a serial port"},
      {"", 115200, "\"\"", "was not found"},
      {line.path(), 0, line.path(), "cannot run at 0 baud"}};
  SerialPort port;
  for (const auto& [name, rate, shown, advice] : cases) {
    EXPECT_FALSE(port.Open(name, rate));
    EXPECT_NE(port.LastError().find(shown), std::string::npos) << port.LastError();
    EXPECT_NE(port.LastError().find(advice), std::string::npos) << port.LastError();
  }
  EXPECT_TRUE(port.Open(line.path(), 115200)) << "a refused rate must leave the port free";
}

TEST(SerialPort, IsForOneAlone) {
  PtyPair line;
  SerialPort owner;
  ASSERT_TRUE(owner.Open(line.path(), 115200));
  SerialPort other;
  EXPECT_FALSE(other.Open(line.path(), 115200));
  EXPECT_EQ(other.LastError(), "Serial port " + line.path() +
                                   " is in use by another program. Close that program and try "
                                   "again.");
}

TEST(SerialPort, IsFreeAtOnceForTheNextWhereCallsWait) {
  PtyPair line;
  SerialPort port;
  SerialPort next;
  uint8_t byte = 0;
  for (int round = 0; round < 20; ++round) {
    ASSERT_TRUE(port.Open(line.path(), 115200)) << port.LastError();
    auto waiting = std::async(std::launch::async, [&] { return port.Read(&byte, 1, kPatienceMs); });
    port.Close();
    EXPECT_TRUE(next.Open(line.path(), 115200)) << next.LastError();
    EXPECT_EQ(waiting.get(), -1);
    next.Close();
  }
}

TEST(SerialPort, TimesOutPurgesAndWritesInPart) {
  PtyPair line;
  SerialPort port;
  uint8_t byte = 0;
  ASSERT_TRUE(port.Open(line.path(), 115200));
  EXPECT_EQ(port.Read(&byte, 1, 5), 0);

  line.Write({1, 2, 3});
  ASSERT_EQ(port.Read(&byte, 1, kPatienceMs), 1);
  EXPECT_TRUE(port.PurgeInput());
  EXPECT_EQ(port.Read(&byte, 1, 5), 0) << "the rest was discarded";

  const Bytes more_than_the_line_holds(1 << 20);
  const int32_t taken =
      port.Write(more_than_the_line_holds.data(), more_than_the_line_holds.size(), 20);
  EXPECT_GT(taken, 0);
  EXPECT_LT(taken, 1 << 20);
}

}  // namespace
}  // namespace kavel::lidar
