#include "lidar_under_test.h"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <array>

namespace {

constexpr int kPatienceMs = 5000;

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
  if (setup.profile.model.empty()) {
    setup.profile.model = "Test";
  }
  if (setup.server.serial == ServerSetup::Serial::kNone) {
    setup.server.tcp_port = 0;
  }
  device_ = std::make_unique<VirtualDevice>(LoadRows(setup.rows), std::move(setup.profile));
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

Bytes HeldIn(const VariableMemory& memory, const std::string& name) {
  const auto& cells = memory.cells();
  const auto found = std::find_if(cells.begin(), cells.end(),
                                  [&](const auto& cell) { return cell.var->var_name == name; });
  return found == cells.end() ? Bytes() : found->value;
}

bool LidarUnderTest::LogShows(const std::string& text) {
  std::array<char, 4096> buffer;
  while (logged_.find(text) == std::string::npos) {
    pollfd ready = {log_reader_.get(), POLLIN, 0};
    if (poll(&ready, 1, kPatienceMs) != 1) {
      return false;
    }
    const ssize_t got = read(log_reader_.get(), buffer.data(), buffer.size());
    if (got <= 0) {
      return false;
    }
    logged_.append(buffer.data(), static_cast<size_t>(got));
  }
  return true;
}

DeviceReply Ask(VirtualDevice* device, const DeviceRequest& request) {
  AuthSession session;
  FaultBox none;
  std::string what;
  return device->Answer(request, &session, &none, &what);
}
