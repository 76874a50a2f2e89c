#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "server/event_loop.h"
#include "server/unique_fd.h"

/// A serial port made of software: a pseudo-terminal in raw mode whose far end a client opens by
/// name() as often as it likes.
class PseudoTerminal {
 public:
  /// Called each time a client has closed the port and no other has it open.
  using CloseHandler = std::function<void()>;

  /// Throws std::system_error when the system gives no pseudo-terminal.
  PseudoTerminal(EventLoop* loop, CloseHandler on_client_closed);
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  /// The path that a client opens, such as /dev/pts/3.
  const std::string& name() const { return name_; }
  /// The device's end, non-blocking; stays open as long as this object.
  int fd() const { return device_end_.get(); }

  /// Bytes that wait to be read by a client, as far as the port tells: it counts up to 4,095.
  size_t unread() const;

  /// Calls the handler when a client has closed the port and that was not noticed yet. Poll may
  /// tell of the next client's first bytes without telling of the closing before them; whoever has
  /// read bytes calls this before looking at them, or their answer is thrown away with what the
  /// client before left unread.
  void NoticeClosing();

 private:
  void Open();

  EventLoop* loop_;
  CloseHandler on_client_closed_;
  std::string name_;
  UniqueFd notify_;
  int open_count_ = 0;  ///< by clients
  UniqueFd device_end_;
  /// Kept open so that the device's end sees no hang-up between two clients.
  UniqueFd client_end_;
};
