#pragma once

#include <thread>

#include "server/device_server.h"
#include "support/bytes.h"
#include "support/socket_peer.h"
#include "support/table_fixture.h"

/// What most tests of a whole device use: two settings read by 0x30 and written by 0x31, network
/// settings, and an up-time.
inline constexpr char kSmallTable[] =
    "1,1,0x30,0x31,,Speed,1,uint16,600,300..1200,,,,,2\n"
    "1,2,0x30,0x31,,Level,1,int8,-3,,,,,,1\n"
    "2,1,0x20,0x21,,Address,1,IP,192.168.1.201,,,,,,4\n"
    "3,1,0x02,,,Up-time,0,DT,0 h 0 min 5 s,,,,,,4\n";

using kavel::lidar::testing::TcpEnd;

/// Requests of protocol 1: liveness, whose answer looks like itself, and new values for Speed and
/// Level, answered by kSetReply.
inline const Bytes kLiveness = {0x47, 0x74, 0x07, 0, 0, 0, 0, 0};
inline const Bytes kSetSpeed = {0x47, 0x74, 0x31, 0, 0, 0, 0, 3, 0x04, 0xB0, 0x05};
inline const Bytes kSetReply = {0x47, 0x74, 0x31, 0, 0, 0, 0, 0};
/// Asks for both, and what the table's defaults answer.
inline const Bytes kReadSpeed = {0x47, 0x74, 0x30, 0, 0, 0, 0, 0};
inline const Bytes kReading = {0x47, 0x74, 0x30, 0, 0, 0, 0, 3, 0x02, 0x58, 0xFD};

/// The bytes that the memory holds for a variable.
Bytes HeldIn(const VariableMemory& memory, const std::string& name);

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
  Bytes Held(const std::string& name) { return HeldIn(Stop().memory(), name); }

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

/// Puts one request to a device; no fault strikes.
DeviceReply Ask(VirtualDevice* device, const DeviceRequest& request);
inline DeviceReply Ask(VirtualDevice* device, uint8_t code, const Bytes& payload = {}) {
  DeviceRequest request;
  request.code = code;
  request.payload = payload;
  return Ask(device, request);
}
