#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "Platform/socket.h"

/// Making a TCP connection.
namespace kavel::lidar {

struct StreamRequest {
  std::string ip;  ///< dotted IPv4
  uint16_t port = 0;
  uint16_t host_port = 0;       ///< the local port to connect from, 0 for any
  bool needs_host_port = true;  ///< whether the attempt ends when that port cannot be bound
  int64_t timeout_us = 0;       ///< for connecting
};

/// How far an attempt got.
enum class ConnectStage {
  kSockets,  ///< the system's sockets did not start
  kCreate,   ///< no socket
  kBind,     ///< the local port cannot be bound
  kAddress,  ///< `ip` is no address
  kStart,    ///< the system refused to try
  kConnect,  ///< nobody accepted
  kDone,
};

struct ConnectResult {
  UniqueSocket socket;  ///< connected, blocking, sends small frames at once; none before `kDone`
  ConnectStage stage = ConnectStage::kDone;
  int error = 0;       ///< why it ended there; `kSocketInProgress`: the time was up
  int bind_error = 0;  ///< why the local port was not bound, 0 when it was or when any will do
};

/// One attempt, ended soon once `*interrupted` (may be null) is set. A connection from a local port
/// that was asked for ends with a reset, which leaves that port free. Logs nothing but options of
/// that port which could not be set.
ConnectResult Connect(const StreamRequest& request, const std::atomic<bool>* interrupted);

/// The same with the log lines that both transports write. `*failure` (may be null) is a sentence
/// for the user on why there is no connection, "" when there is one.
UniqueSocket TryConnect(const StreamRequest& request, const std::atomic<bool>* interrupted,
                        std::string* failure);

/// True for the errors of an attempt to connect that is still under way.
bool IsPending(int error);

}  // namespace kavel::lidar
