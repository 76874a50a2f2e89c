#include "udp_watch.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QTest>

#include "serial_port_list.h"

namespace {

constexpr int kWaitMs = 10000;

// A UDP socket on 127.0.0.1 and a port of the system's choice.
class UdpPeer {
 public:
  UdpPeer() : socket_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = Address(0);
    EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    socklen_t size = sizeof address;
    getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
  }
  ~UdpPeer() { close(socket_); }
  UdpPeer(const UdpPeer&) = delete;
  UdpPeer& operator=(const UdpPeer&) = delete;

  uint16_t port() const { return port_; }
  void SendTo(uint16_t port) const {
    const sockaddr_in address = Address(port);
    sendto(socket_, "point", 5, 0, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  }

 private:
  static sockaddr_in Address(uint16_t port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
  }

  int socket_;
  uint16_t port_ = 0;
};

uint16_t FreePort() { return UdpPeer().port(); }

TEST(UdpWatchTest, NamesTheSenderOfPackets) {
  const uint16_t port = FreePort();
  const UdpPeer lidar;
  UdpWatch watch;
  ASSERT_TRUE(watch.Start(QString::number(port))) << watch.summary().toStdString();
  EXPECT_EQ(watch.summary(), QString("Waiting for packets on UDP port %1.").arg(port));
  EXPECT_FALSE(watch.arriving());
  EXPECT_EQ(watch.sender(), QString());

  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        lidar.SendTo(port);
        return watch.arriving();
      },
      kWaitMs));
  EXPECT_EQ(watch.sender(), QString("127.0.0.1:%1").arg(lidar.port()));
  EXPECT_GE(watch.packet_count(), 1);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !watch.arriving(); }, kWaitMs)) << "silence is noticed";
  EXPECT_TRUE(watch.summary().contains(watch.sender()));

  watch.Stop();
  EXPECT_FALSE(watch.running());
  EXPECT_TRUE(watch.Start(QString::number(port))) << "a stopped watch has freed its port";
  EXPECT_EQ(watch.packet_count(), 0);
}

TEST(UdpWatchTest, SaysWhyItDoesNotStart) {
  UdpWatch watch;
  for (const char* text : {"", "0", "65536", "-1", "2368x", "23 68"}) {
    EXPECT_FALSE(watch.Start(text)) << text;
    EXPECT_FALSE(watch.running()) << text;
    EXPECT_EQ(watch.summary(), "The UDP port has to be a number from 1 to 65535.") << text;
  }
}

TEST(SerialPortListTest, DescribesAPortInOneLine) {
  EXPECT_EQ(SerialPortList::Label("/dev/ttyUSB0", "USB-RS485 cable", "0403:6001"),
            QString::fromUtf8("/dev/ttyUSB0 · USB-RS485 cable · 0403:6001"));
  EXPECT_EQ(SerialPortList::Label("/dev/ttyS0", "", ""), "/dev/ttyS0");
  SerialPortList list;
  EXPECT_TRUE(list.ports().isEmpty()) << "nothing is listed unasked";
}

}  // namespace
