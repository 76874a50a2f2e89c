// A group is joined only in a network of the test's own, so that nothing outside hears of it.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

#include "Source/socket_source.h"
#include "support/log_lines.h"

namespace kavel::lidar {
namespace {

constexpr const char* kGroup = "239.1.2.3";
constexpr int kNotPermitted = 77;

bool BringLoopbackUp() {
  const int fd = socket(AF_INET, SOCK_DGRAM, 0);
  ifreq interface {};
  std::strcpy(interface.ifr_name, "lo");
  interface.ifr_flags = IFF_UP | IFF_MULTICAST;
  const bool up = ioctl(fd, SIOCSIFFLAGS, &interface) == 0;
  close(fd);
  return up;
}

// Runs in the child; the result is its exit code.
int ReceiveFromGroup() {
  if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0 || !BringLoopbackUp()) {
    return kNotPermitted;
  }
  testing::LogLines log;
  SocketSource source(0, "127.0.0.1", kGroup);
  SocketSource sender(0, "127.0.0.1", "");
  if (!source.Open() || !sender.Open() ||
      log.Count(kInfo, "Recive data from multicast ip address 239.1.2.3") != 1) {
    return 1;
  }
  sender.SetPeer(inet_addr(kGroup), source.BoundPort());
  const uint8_t data[] = {1, 2, 3};
  UdpPacket packet;
  if (source.Receive(packet, 1500, 0, 0) != -1 || sender.Send(data, 3, 0) != 3) {
    return 2;
  }
  const bool came = source.Receive(packet, 1500, 0, 900'000) == 3;
  return came && packet.ip == htonl(INADDR_LOOPBACK) ? 0 : 3;
}

TEST(SocketSource, ReceivesFromAGroup) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    _exit(ReceiveFromGroup());
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kNotPermitted) {
    GTEST_SKIP() << "this system does not let the test make a network of its own";
  }
  EXPECT_EQ(WEXITSTATUS(status), 0) << "the step that failed, see ReceiveFromGroup";
}

}  // namespace
}  // namespace kavel::lidar
