// The command client over real connections: how it connects, ends and shares its line.

#include "CmxClient/cmx_client.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include "CmxClient/file_transfer.h"
#include "libkavel/scripted_transport.h"
#include "support/log_lines.h"
#include "support/socket_peer.h"
#include "support/wait_for.h"

namespace kavel::lidar {
namespace {

using namespace testing;

struct ClientOptions {
  std::string ip = "127.0.0.1";
  uint32_t timeout_ms = 500;
  float limit_s = 10;
  uint16_t host_port = 0;
};

std::unique_ptr<CmxClient> Client(uint16_t port, const ClientOptions& options = {}) {
  return std::make_unique<CmxClient>(options.ip, port, false, 0, 1, "", "", "", options.timeout_ms,
                                     options.timeout_ms, options.limit_s, options.host_port);
}

// Answers every version 1 command with its own payload.
void EchoCommands(TcpEnd& peer) {
  for (Bytes header = peer.Read(8); header.size() == 8; header = peer.Read(8)) {
    peer.Send(header + peer.Read(header[7]));
  }
}

void TakeCommandsInSilence(TcpEnd& peer) { peer.WaitForEnd(); }

// Ends a client and fails when that takes longer than it may in any state.
void EndInTime(std::unique_ptr<CmxClient> client) {
  const auto start = std::chrono::steady_clock::now();
  client.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
}

TEST(CmxClientConnect, KeepsTryingUntilTheLidarIsThere) {
  auto holder = std::make_unique<SocketPeer>(TakeCommandsInSilence);
  SocketPeer peer(EchoCommands);
  // The local port is taken at first, so that the first attempts fail.
  ClientOptions options;
  options.host_port = holder->port();
  const auto client = Client(peer.port(), options);
  EXPECT_TRUE(WaitFor([&] { return !client->ConnectFailure().empty(); }));
  EXPECT_FALSE(client->IsOpen());
  holder.reset();
  EXPECT_TRUE(client->WaitUntilConnected());
  EXPECT_EQ(client->ConnectFailure(), "");
}

TEST(CmxClientConnect, EndsWhereTheTransportSaysThatNoFurtherAttemptHelps) {
  struct Transport : ScriptedTransport {
    bool TryOpen(uint16_t, const std::string&, uint16_t, bool, const char*, const char*,
                 const char*, uint32_t timeout_s) override {
      limits.push_back(timeout_s);
      return false;
    }
    bool IsOpened() override { return false; }
    bool MayTryAgain() override { return limits.size() < 3; }
    std::vector<uint32_t> limits;
  };
  const auto transport = std::make_shared<Transport>();
  CmxClient::Target target;
  target.lidar_ip = "127.0.0.1";
  target.attempt_limit_s = 4;
  CmxClient client(transport, target, 1, 500, 500);
  EXPECT_FALSE(client.WaitUntilConnected());
  EXPECT_EQ(transport->limits, (std::vector<uint32_t>{4, 4, 4}));
}

TEST(CmxClientConnect, GivesUpWhenItsTimeIsOver) {
  LogLines log;
  ClientOptions options;
  options.limit_s = 0.2F;
  EXPECT_FALSE(Client(UnusedPort(), options)->WaitUntilConnected());
  EXPECT_EQ(log.Count(kWarning, "cmx connect exit 2"), 1);
  options.ip = "";
  EXPECT_FALSE(Client(UnusedPort(), options)->WaitUntilConnected());
  EXPECT_EQ(log.Count(kWarning,
                      "CmxClient::CmxClient() lidar_ip_ is empty, wait recv could point "
                      "to get lidar ip"),
            1);
  EXPECT_EQ(log.Count(kWarning, "cmx connect : get lidar ip timeout"), 1);
}

TEST(CmxClientConnect, WaitsForAnAddressAndLogsItsWay) {
  LogLines log;
  SocketPeer peer(EchoCommands);
  ClientOptions options;
  options.ip = "";
  const auto client = Client(peer.port(), options);
  Bytes result;
  int32_t error = 0;
  EXPECT_EQ(client->QueryCommand({}, result, 7, false, &error), -1);
  EXPECT_EQ(error, kNotConnected);
  client->SetLidarIp("127.0.0.1");
  client->SetLidarIp("127.0.0.9");
  ASSERT_TRUE(client->WaitUntilConnected());
  EXPECT_EQ(client->QueryCommand({1, 2}, result, 7, false), 0);
  EXPECT_EQ(result, (Bytes{1, 2}));
  EXPECT_EQ(log.Count(kInfo, "CmxClient::CmxClient() 127.0.0.1 " + std::to_string(peer.port())), 1);
  EXPECT_EQ(log.Count(kInfo, "u32RecvTimeoutMs 500"), 1);
  EXPECT_EQ(log.Count(kInfo, "u32SendTimeoutMs 500"), 1);
  EXPECT_EQ(log.Count(kInfo, "cmx connect success"), 1);
  EXPECT_EQ(log.Count(kTrace, "exec time: "), 1);
}

TEST(CmxClientShutdown, EndsInEveryPhase) {
  LogLines log;
  SocketPeer peer(TakeCommandsInSilence);
  DeafPort deaf;
  ClientOptions forever;
  forever.limit_s = -1;
  forever.timeout_ms = 600000;
  // Waiting for the other end's answer, refused, just started, connected and idle.
  for (const uint16_t port : {deaf.port(), UnusedPort(), peer.port()}) {
    EndInTime(Client(port, forever));
  }
  auto client = Client(peer.port(), forever);
  ASSERT_TRUE(client->WaitUntilConnected());
  EndInTime(std::move(client));
  forever.ip = "";
  EndInTime(Client(1, forever));
  EXPECT_EQ(log.Count(kInfo, "cmx connect exit 1"), 1) << "waiting for an address";
}

TEST(CmxClientShutdown, EndsATransfer) {
  SocketPeer peer(TakeCommandsInSilence);
  auto client = Client(peer.port());
  ASSERT_TRUE(client->WaitUntilConnected());
  client->SetStaleInput(StaleInput::kAfterTrouble);
  std::atomic<int> progress{0};
  std::thread user(
      [&] { EXPECT_EQ(TransferFile(*client, Bytes(5000), 1, false, &progress, nullptr), -1); });
  EXPECT_TRUE(WaitFor([&] { return progress > 0; }));
  client->Shutdown();
  client->Shutdown();
  EXPECT_FALSE(client->IsOpen());
  user.join();
  EndInTime(std::move(client));
}

TEST(CmxClientSharing, ThreadsGetTheirOwnAnswersAndReasons) {
  // Refuses every command with the command itself.
  SocketPeer peer([](TcpEnd& connection) {
    for (Bytes frame = connection.Read(8); frame.size() == 8; frame = connection.Read(8)) {
      frame[3] = frame[2];
      connection.Send(frame);
    }
  });
  const auto client = Client(peer.port());
  ASSERT_TRUE(client->WaitUntilConnected());
  client->SetStaleInput(StaleInput::kAfterTrouble);
  std::vector<std::thread> users;
  for (const uint8_t cmd : Bytes{2, 3, 4, 5}) {
    users.emplace_back([&client, cmd] {
      for (int round = 0; round < 10; ++round) {
        Bytes result;
        int32_t error = -99;
        EXPECT_EQ(client->QueryCommand({}, result, cmd, false, &error), -1);
        EXPECT_EQ(error, cmd);
        client->SetByteSink(nullptr);
        client->GetLastErrorCode();
      }
    });
  }
  for (auto& user : users) {
    user.join();
  }
}

TEST(CmxClientSharing, NobodyIsKeptOutByAThreadThatComesAgainAndAgain) {
  TicketMutex mutex(Turn::kExchange);
  std::atomic<bool> ends{false};
  std::atomic<int> rounds{0};
  std::thread other([&] {
    while (!ends) {
      const std::lock_guard<TicketMutex> lock(mutex);
      ++rounds;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  EXPECT_TRUE(WaitFor([&] { return rounds > 0; }));
  int fewest = 1000;  // rounds that one waiter saw; a busy machine may delay this thread's request
  for (int i = 0; i < 10; ++i) {
    const int before = rounds;
    const std::lock_guard<TicketMutex> lock(mutex);
    fewest = std::min(fewest, rounds - before);
  }
  ends = true;
  other.join();
  EXPECT_LE(fewest, 1);
}

}  // namespace
}  // namespace kavel::lidar
