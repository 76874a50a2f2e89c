#include <fcntl.h>

#include "CmxClient/serial_client.h"
#include "lidar_under_test.h"
#include "server/pseudo_terminal.h"
#include "support/wait_for.h"

namespace {

using kavel::lidar::SerialClient;
using kavel::lidar::testing::WaitFor;

constexpr uint32_t kPatienceMs = 5000;

LidarUnderTest::Setup On(ServerSetup::Serial serial, const LineSpeed& speed) {
  LidarUnderTest::Setup setup;
  setup.server.serial = serial;
  setup.server.line_speed = speed;
  setup.profile.family = SerialFamily::kKiva;
  return setup;
}

std::shared_ptr<kavel::lidar::SerialSource> OpenPort(const LidarUnderTest& lidar, size_t port,
                                                     int receive_type) {
  auto source = std::make_shared<kavel::lidar::SerialSource>(lidar.serial_ports().at(port), 115200,
                                                             receive_type);
  EXPECT_TRUE(source->Open()) << source->LastError();
  return source;
}

TEST(SerialLine, AnswersAfterEachReopeningOfThePort) {
  for (const LineSpeed speed : {LineSpeed{}, {115200, std::chrono::milliseconds(20)}}) {
    auto setup = On(ServerSetup::Serial::kOneLine, speed);
    setup.server.tcp_port = 0;
    LidarUnderTest lidar(std::move(setup));
    for (int round = 0; round < 3; ++round) {
      SCOPED_TRACE(round);
      const auto source = OpenPort(lidar, 0, kavel::lidar::kReceiveAnswers);
      SerialClient client(source, source);
      Bytes inner;
      const auto start = std::chrono::steady_clock::now();
      ASSERT_EQ(client.SendCommand(0x30, {}, inner, kPatienceMs), 0);
      EXPECT_GE(std::chrono::steady_clock::now() - start, 2 * speed.latency);
      EXPECT_EQ(inner, (Bytes{4, 0x30, 0, 0x02, 0x58, 0xFD}));
      // Network settings do not cut a serial line, but they do cut a network.
      EXPECT_EQ(client.SendCommand(0x21, {10, 0, 0, 2}, inner, kPatienceMs), 0);
      EXPECT_EQ(client.SwitchMode(0, 0), 0);
      TcpEnd on_network = TcpEnd::To(lidar.port());
      on_network.Send({0x47, 0x74, 0x21, 0, 0, 0, 0, 4, 10, 0, 0, 3});
      EXPECT_TRUE(on_network.EndsHere());
    }
  }
}

// Closed last by a call that was still in progress, while the next client is at work already.
TEST(SerialLine, IsFreeOnlyWhenTheLastClientHasClosedIt) {
  EventLoop loop;
  int times_free = 0;
  PseudoTerminal line(&loop, [&times_free] { ++times_free; });
  const auto open_port = [&line] {
    UniqueFd port(open(line.name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_TRUE(port.valid());
    line.NoticeClosing();
    return port;
  };
  UniqueFd before = open_port();
  UniqueFd after = open_port();
  before = UniqueFd();
  line.NoticeClosing();
  EXPECT_EQ(times_free, 0);
  after = UniqueFd();
  line.NoticeClosing();
  EXPECT_EQ(times_free, 1);
}

// The first port takes requests, the second answers; it goes on sending when nobody reads.
TEST(SerialLine, PairCarriesThePointCloudBetweenAnswers) {
  for (const LineSpeed speed : {LineSpeed{}, {921600, std::chrono::milliseconds(5)}}) {
    auto setup = On(ServerSetup::Serial::kPair, speed);
    setup.faults = {"split"};
    setup.server.uart_points_per_second = 200;
    LidarUnderTest lidar(std::move(setup));
    for (int round = 0; round < 3; ++round) {
      const auto requests = OpenPort(lidar, 0, kavel::lidar::kReceiveAnswers);
      const auto answers = OpenPort(lidar, 1, kavel::lidar::kReceiveAnswersAndPoints);
      SerialClient client(requests, answers);
      for (int i = 0; i < 5; ++i) {
        const uint64_t before = client.AnswerCounters().points;
        Bytes inner;
        ASSERT_EQ(client.SendCommand(0x30, {}, inner, kPatienceMs), 0) << "round " << round;
        ASSERT_TRUE(WaitFor([&] { return client.AnswerCounters().points > before; }));
      }
      kavel::lidar::UdpPacket packet;
      ASSERT_EQ(answers->Receive(packet, 1500, 0, 0), 1200);
      EXPECT_EQ(std::string(packet.data.begin(), packet.data.begin() + 4), "KPCL");
    }
  }
}

TEST(SerialLine, PortVanishesAndANewOneComes) {
  auto setup = On(ServerSetup::Serial::kOneLine, {});
  setup.faults = {"close-before-reply#1"};
  LidarUnderTest lidar(std::move(setup));
  const auto source = OpenPort(lidar, 0, kavel::lidar::kReceiveAnswers);
  SerialClient client(source, source);
  Bytes inner;
  EXPECT_NE(client.SendCommand(0x30, {}, inner, kPatienceMs), 0);
  EXPECT_FALSE(client.IsOpen());
  EXPECT_TRUE(lidar.LogShows("no answer [fault: close-before-reply]\nserial port /"));
}

}  // namespace
