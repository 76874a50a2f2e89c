// Whose a serial port is: on Linux, where a user has to be let.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/serial_port.h"
#include "support/pty_pair.h"

namespace kavel::lidar {
namespace {

TEST(SerialPort, SaysWhoMayOpenIt) {
  testing::PtyPair foreign;
  ASSERT_EQ(chmod(foreign.path().c_str(), 0), 0);
  const bool is_root = geteuid() == 0;
  ASSERT_TRUE(!is_root || seteuid(65534) == 0);
  SerialPort port;
  EXPECT_FALSE(port.Open(foreign.path(), 115200));
  ASSERT_TRUE(!is_root || seteuid(0) == 0);
  EXPECT_NE(port.LastError().find(foreign.path()), std::string::npos) << port.LastError();
  EXPECT_NE(port.LastError().find("dialout"), std::string::npos) << port.LastError();
}

}  // namespace
}  // namespace kavel::lidar
