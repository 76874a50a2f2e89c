#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "device_server.h"
#include "test_table.h"

using Bytes = std::vector<uint8_t>;

/// A running virtual lidar with its own thread, reachable on the real wire.
class LidarUnderTest {
 public:
  struct Setup {
    std::string rows = kSmallTable;
    std::vector<std::string> faults;
    DeviceProfile profile;
    ServerSetup server;
  };

  /// Without any serial line, TCP on a port of the system's choice.
  explicit LidarUnderTest(Setup setup);
  ~LidarUnderTest() { Stop(); }

  uint16_t port() const { return server_->port(); }
  const std::vector<std::string>& serial_ports() const { return serial_ports_; }

  /// Ends the device's thread; what it holds can then be looked at.
  const VirtualDevice& Stop();
  /// The bytes that it holds for a variable. Ends it.
  Bytes Held(const std::string& name);

  /// Waits until the log holds the text.
  bool LogShows(const std::string& text);

 private:
  UniqueFd log_reader_;
  UniqueFd log_writer_;
  std::unique_ptr<LineLog> log_;
  FaultBox faults_;
  EventLoop loop_;
  std::unique_ptr<VirtualDevice> device_;
  std::unique_ptr<DeviceServer> server_;
  std::vector<std::string> serial_ports_;
  std::thread thread_;
  std::string logged_;
};

/// A TCP client that sends and receives bytes and knows nothing of frames. Waits are bounded.
class RawClient {
 public:
  explicit RawClient(uint16_t port);

  void Send(const Bytes& bytes) const;
  /// Receives until the bytes end with `end`, or the link was closed, or five seconds passed.
  Bytes ReceiveUpTo(const Bytes& end);
  /// Receives until there are this many.
  Bytes ReceiveExactly(size_t count);
  bool closed() const { return closed_; }

 private:
  bool ReceiveMore(Bytes* received);

  UniqueFd fd_;
  bool closed_ = false;
};

/// A connected client; ends the test's expectations when it cannot connect.
std::unique_ptr<kavel::lidar::CmxClient> ConnectTo(uint16_t port, uint8_t protocol = 1,
                                                   uint32_t recv_timeout_ms = 300);
