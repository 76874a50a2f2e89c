#include "Platform/serial_port.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/pty_pair.h"

namespace kavel::lidar {
namespace {

using Bytes = std::vector<uint8_t>;
using testing::PtyPair;

constexpr uint32_t kPatienceMs = 5000;

void ExpectMessage(const SerialPort& port, const std::string& name, const std::string& advice) {
  EXPECT_NE(port.LastError().find(name), std::string::npos) << port.LastError();
  EXPECT_NE(port.LastError().find(advice), std::string::npos) << port.LastError();
}

TEST(SerialPort, CarriesAllBytesBothWaysAtAnyRate) {
  Bytes every_byte(256);
  for (size_t i = 0; i < every_byte.size(); ++i) every_byte[i] = static_cast<uint8_t>(i);
  for (const uint32_t rate : {9600U, 115200U, 3000000U, 3125000U}) {
    PtyPair line;
    SerialPort port;
    ASSERT_TRUE(port.Open(line.path(), rate)) << port.LastError();
    EXPECT_EQ(port.baud_rate_bps(), rate);

    ASSERT_EQ(port.Write(every_byte.data(), every_byte.size(), kPatienceMs), 256);
    EXPECT_EQ(line.ReadExactly(256), every_byte) << "no byte is translated or swallowed";

    line.Write(every_byte);
    Bytes received;
    while (received.size() < 256) {
      uint8_t buffer[100];
      const int32_t count = port.Read(buffer, sizeof buffer, kPatienceMs);
      ASSERT_GT(count, 0);
      received.insert(received.end(), buffer, buffer + count);
    }
    EXPECT_EQ(received, every_byte);
    EXPECT_TRUE(port.SetBaudRate(57600));
    EXPECT_FALSE(port.SetBaudRate(0));
    EXPECT_TRUE(port.IsOpen());
  }
}

TEST(SerialPort, SaysWhichPortCannotBeOpenedAndWhatToDo) {
  SerialPort port;
  EXPECT_FALSE(port.Open("no-such-port", 115200));
  ExpectMessage(port, "/dev/no-such-port", "was not found");
  EXPECT_FALSE(port.Open("/dev/null", 115200));
  ExpectMessage(port, "/dev/null", "is not a serial port");
  EXPECT_FALSE(port.Open("", 115200));
  ExpectMessage(port, "\"\"", "was not found");

  PtyPair line;
  EXPECT_FALSE(port.Open(line.path(), 0));
  ExpectMessage(port, line.path(), "cannot run at 0 baud");
  SerialPort owner;
  ASSERT_TRUE(owner.Open(line.path(), 115200)) << "a refused rate must leave the port free";
  EXPECT_FALSE(port.Open(line.path(), 115200));
  ExpectMessage(port, line.path(), "in use by another program");
  owner.Close();
  EXPECT_TRUE(port.Open(line.path(), 115200)) << port.LastError();
}

TEST(SerialPort, SaysWhoMayOpenIt) {
  PtyPair line;
  ASSERT_EQ(chmod(line.path().c_str(), 0), 0);
  const bool is_root = geteuid() == 0;
  ASSERT_TRUE(!is_root || seteuid(65534) == 0);
  SerialPort port;
  EXPECT_FALSE(port.Open(line.path(), 115200));
  ASSERT_TRUE(!is_root || seteuid(0) == 0);
  ExpectMessage(port, line.path(), "dialout");
}

TEST(SerialPort, ClosesAtTheFirstErrorWhenTheFarEndVanishes) {
  uint8_t byte = 0;
  for (const bool reading : {true, false}) {
    PtyPair line;
    SerialPort port;
    ASSERT_TRUE(port.Open(line.path(), 115200));
    line.HangUp();
    EXPECT_EQ(reading ? port.Read(&byte, 1, kPatienceMs) : port.Write(&byte, 1, kPatienceMs), -1);
    EXPECT_FALSE(port.IsOpen());
    ExpectMessage(port, line.path(), "was lost");
    EXPECT_EQ(port.Read(&byte, 1, kPatienceMs), -1) << "and stays closed";
  }
}

TEST(SerialPort, TimesOutPurgesAndWritesInPart) {
  PtyPair line;
  SerialPort port;
  uint8_t byte = 0;
  EXPECT_EQ(port.Read(&byte, 1, 0), -1);
  EXPECT_FALSE(port.PurgeInput());
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

TEST(SerialPort, InterruptAndCloseEndABlockedRead) {
  for (const bool close : {true, false}) {
    PtyPair line;
    SerialPort port;
    ASSERT_TRUE(port.Open(line.path(), 115200));
    std::atomic<int32_t> result{99};
    std::thread reader([&] {
      uint8_t byte = 0;
      result = port.Read(&byte, 1, 3'600'000);
    });
    close ? port.Close() : port.Interrupt();
    reader.join();
    EXPECT_EQ(result, -1);
    EXPECT_EQ(port.IsOpen(), !close);
    uint8_t byte = 0;
    EXPECT_EQ(port.Read(&byte, 1, 3'600'000), -1) << "an interruption stays";
    ASSERT_TRUE(port.Open(line.path(), 115200));
    EXPECT_EQ(port.Read(&byte, 1, 5), 0) << "until the port is opened anew";
  }
}

}  // namespace
}  // namespace kavel::lidar
