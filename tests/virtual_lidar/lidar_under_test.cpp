#include "lidar_under_test.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int kPatienceMs = 5000;

bool Readable(int fd) {
  pollfd ready = {fd, POLLIN, 0};
  return poll(&ready, 1, kPatienceMs) == 1;
}

FaultBox MakeFaults(const std::vector<std::string>& texts) {
  std::vector<FaultOrder> orders(texts.size());
  std::string error;
  for (size_t i = 0; i < texts.size(); ++i) {
    EXPECT_TRUE(ParseFaultOrder(texts[i], &orders[i], &error)) << error;
  }
  return FaultBox(orders);
}

}  // namespace

LidarUnderTest::LidarUnderTest(Setup setup) : faults_(MakeFaults(setup.faults)) {
  std::array<int, 2> pipe_ends = {};
  EXPECT_EQ(pipe2(pipe_ends.data(), O_CLOEXEC), 0);
  log_reader_ = UniqueFd(pipe_ends[0]);
  log_writer_ = UniqueFd(pipe_ends[1]);
  log_ = std::make_unique<LineLog>(log_writer_.get());
  if (setup.profile.model.empty()) setup.profile.model = "Test";
  if (setup.server.serial == ServerSetup::Serial::kNone) setup.server.tcp_port = 0;
  device_ = std::make_unique<VirtualDevice>(LoadTestTable(setup.rows), std::move(setup.profile));
  server_ =
      std::make_unique<DeviceServer>(&loop_, device_.get(), &faults_, log_.get(), setup.server);
  std::string error;
  EXPECT_TRUE(server_->Start(&error)) << error;
  serial_ports_ = server_->SerialPortNames();
  thread_ = std::thread([this] { loop_.Run(); });
}

const VirtualDevice& LidarUnderTest::Stop() {
  if (thread_.joinable()) {
    loop_.Stop();
    thread_.join();
  }
  return *device_;
}

Bytes LidarUnderTest::Held(const std::string& name) {
  const auto& cells = Stop().memory().cells();
  const auto found = std::find_if(cells.begin(), cells.end(),
                                  [&](const auto& cell) { return cell.var->var_name == name; });
  return found == cells.end() ? Bytes() : found->value;
}

bool LidarUnderTest::LogShows(const std::string& text) {
  std::array<char, 4096> buffer;
  while (logged_.find(text) == std::string::npos) {
    if (!Readable(log_reader_.get())) return false;
    const ssize_t got = read(log_reader_.get(), buffer.data(), buffer.size());
    if (got <= 0) return false;
    logged_.append(buffer.data(), static_cast<size_t>(got));
  }
  return true;
}

RawClient::RawClient(uint16_t port) : fd_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(connect(fd_.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
}

void RawClient::Send(const Bytes& bytes) const {
  EXPECT_EQ(send(fd_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
            static_cast<ssize_t>(bytes.size()));
}

bool RawClient::ReceiveMore(Bytes* received) {
  std::array<uint8_t, 4096> buffer;
  if (!Readable(fd_.get())) return false;
  const ssize_t got = recv(fd_.get(), buffer.data(), buffer.size(), 0);
  closed_ = got <= 0;
  if (!closed_) received->insert(received->end(), buffer.begin(), buffer.begin() + got);
  return !closed_;
}

Bytes RawClient::ReceiveUpTo(const Bytes& end) {
  Bytes received;
  const auto is_there = [&] {
    return received.size() >= end.size() && std::equal(end.rbegin(), end.rend(), received.rbegin());
  };
  while (!is_there() && ReceiveMore(&received)) {
  }
  return received;
}

Bytes RawClient::ReceiveExactly(size_t count) {
  Bytes received;
  while (received.size() < count && ReceiveMore(&received)) {
  }
  return received;
}

std::unique_ptr<kavel::lidar::CmxClient> ConnectTo(uint16_t port, uint8_t protocol,
                                                   uint32_t recv_timeout_ms) {
  auto client = std::make_unique<kavel::lidar::CmxClient>(
      "127.0.0.1", port, false, 0U, protocol, "", "", "", recv_timeout_ms, 500U, 5.0F, uint16_t{0});
  EXPECT_TRUE(client->WaitUntilConnected());
  return client;
}
