#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "server/event_loop.h"
#include "server/unique_fd.h"

/// Accepts TCP clients on 127.0.0.1.
class TcpListener {
 public:
  /// Gets the client's socket, non-blocking, and its "IP:PORT".
  using ClientHandler = std::function<void(UniqueFd socket, const std::string& peer)>;

  TcpListener(EventLoop* loop, ClientHandler on_client);
  ~TcpListener();
  TcpListener(const TcpListener&) = delete;
  TcpListener& operator=(const TcpListener&) = delete;

  /// Starts to listen. Port 0 lets the system pick one, which port() then gives.
  /// Returns false when the port cannot be had; error() is then a sentence with the reason.
  bool Open(uint16_t port);
  /// Stops listening; clients already accepted are not touched.
  void Close();

  uint16_t port() const { return port_; }
  const std::string& error() const { return error_; }

 private:
  bool Fail(const char* doing, uint16_t port);
  void Accept();

  EventLoop* loop_;
  ClientHandler on_client_;
  UniqueFd fd_;
  uint16_t port_ = 0;
  std::string error_;
};
