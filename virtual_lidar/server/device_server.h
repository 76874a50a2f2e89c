#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "device/virtual_device.h"
#include "faults/fault_modes.h"
#include "server/event_loop.h"
#include "server/line_log.h"
#include "server/link.h"
#include "server/point_cloud_sender.h"
#include "server/pseudo_terminal.h"
#include "server/slow_line.h"
#include "server/tcp_listener.h"
#include "server/tls_stream.h"

/// Where a virtual lidar can be reached.
struct ServerSetup {
  enum class Serial { kNone, kOneLine, kPair };

  std::optional<uint16_t> tcp_port;  ///< on 127.0.0.1; 0 lets the system pick
  bool other_port_will_do = false;   ///< should that one be in use
  int protocol = 1;                  ///< version of the CMX frames over TCP: 1 or 2
  /// Speak TLS over TCP, with this certificate and key, to clients that show a certificate by the
  /// CA, if there is one.
  std::optional<kavel::lidar::TlsIdentity> tls;
  Serial serial = Serial::kNone;  ///< kPair: requests by one port, answers by the other
  LineSpeed line_speed;           ///< of the serial lines
  std::optional<PointCloudTarget> point_cloud;
  uint32_t uart_points_per_second = 0;  ///< packets on the answering port of a pair; 0: none
  std::chrono::milliseconds restart_time{300};  ///< how long a restart keeps the device away
  std::string dump_file;                        ///< rewritten after every change; empty: none
};

/// Puts a virtual device on the wire: TCP, serial lines, UDP, on one event loop and its thread.
class DeviceServer : private LinkHost {
 public:
  /// Everything pointed to must outlive the server.
  DeviceServer(EventLoop* loop, VirtualDevice* device, FaultBox* faults, const LineLog* log,
               ServerSetup setup);
  ~DeviceServer() override;

  /// Writes the first dump, opens what the setup asks for, and logs one line for each: "serial port
  /// NAME" ("serial port 485 NAME" and "serial port 232 NAME" for a pair), "TLS certificate NAME,
  /// SHA-256 FINGERPRINT", then "listening on 127.0.0.1:PORT".
  /// Returns false with a sentence in *error when something cannot be had.
  bool Start(std::string* error);

  /// The TCP port in use; 0 before Start.
  uint16_t port() const { return listener_.port(); }
  /// The serial ports in use; for a pair the RS-485 one first.
  std::vector<std::string> SerialPortNames() const;

  /// Writes the dump file anew, when there is one; a failure is logged.
  void Dump();

 private:
  // One TCP connection: its link, and the descriptor that closes behind it.
  struct Client;

  void BeforeRequests(Link& link) override;
  ReplyPlan OnRequest(Link& link, const DeviceRequest& request) override;
  void OnHangUp(Link& link) override;
  void OnRestartDue() override;

  bool OpenTcp(std::string* error);
  std::unique_ptr<ByteStream> StreamOver(int socket) const;
  void OnClient(UniqueFd socket, const std::string& peer);
  void SendOnUart(const std::vector<uint8_t>& packet);
  void OpenSerial();
  int DeviceEnd(const PseudoTerminal& line, std::unique_ptr<SlowLine>* slow);
  void NoticeClosing();
  void OnPortClosed();
  void ResetSerialLink();
  void BeginRestart();
  void EndRestart();
  void LogRequest(const Link& link, const DeviceRequest& request, const std::string& what,
                  const std::string& outcome);

  EventLoop* loop_;
  VirtualDevice* device_;
  FaultBox* faults_;
  const LineLog* log_;
  ServerSetup setup_;

  kavel::lidar::TlsContext tls_;  ///< none: plain TCP
  TcpListener listener_;
  std::vector<std::unique_ptr<Client>> clients_;
  std::unique_ptr<PseudoTerminal> line_;  ///< requests, and answers when it is alone
  std::unique_ptr<PseudoTerminal> answer_line_;
  std::unique_ptr<SlowLine> slow_line_;  ///< in front of each, when the line is slow
  std::unique_ptr<SlowLine> slow_answer_line_;
  std::unique_ptr<Link> serial_link_;
  std::unique_ptr<PointCloudSender> point_cloud_;
  std::unique_ptr<PointCloudSender> uart_points_;
  bool away_ = false;  ///< restarting
  bool restart_pending_ = false;
};
