#include "server/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

namespace {

[[noreturn]] void Throw(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

PseudoTerminal::PseudoTerminal(EventLoop* loop, CloseHandler on_client_closed)
    : loop_(loop),
      on_client_closed_(std::move(on_client_closed)),
      notify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  Open();
  if (inotify_add_watch(notify_.get(), name_.c_str(), IN_OPEN | IN_CLOSE) < 0) {
    Throw("cannot watch the port");
  }
  loop_->Watch(notify_.get(), POLLIN, [this](short) { NoticeClosing(); });
}

PseudoTerminal::~PseudoTerminal() { loop_->Unwatch(notify_.get()); }

void PseudoTerminal::Open() {
  device_end_ = UniqueFd(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  std::array<char, 128> name = {};
  if (!device_end_.valid() || grantpt(fd()) != 0 || unlockpt(fd()) != 0 ||
      ptsname_r(fd(), name.data(), name.size()) != 0) {
    Throw("cannot make a pseudo-terminal");
  }
  name_ = name.data();
  client_end_ = UniqueFd(open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios line = {};
  if (!client_end_.valid() || tcgetattr(client_end_.get(), &line) != 0) {
    Throw("cannot open the port");
  }
  cfmakeraw(&line);
  if (tcsetattr(client_end_.get(), TCSANOW, &line) != 0) {
    Throw("cannot set the port to raw mode");
  }
}

size_t PseudoTerminal::unread() const {
  int bytes = 0;
  return ioctl(client_end_.get(), FIONREAD, &bytes) == 0 ? static_cast<size_t>(bytes) : 0;
}

// One that closes the port and opens it again may have the old descriptor closed last, when another
// of its threads was still at it: whoever has the port then is a new client already.
void PseudoTerminal::NoticeClosing() {
  alignas(inotify_event) std::array<char, 4096> buffer;
  bool closed = false;
  ssize_t size = 0;
  while ((size = read(notify_.get(), buffer.data(), buffer.size())) > 0) {
    // Of a file that is watched itself the events have no names, so that they are of one size.
    for (ssize_t at = 0; at < size; at += static_cast<ssize_t>(sizeof(inotify_event))) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
      if ((event->mask & IN_OPEN) != 0) {
        ++open_count_;
      } else if ((event->mask & IN_CLOSE) != 0) {
        // The system tells of two openings in a row as one.
        open_count_ = std::max(open_count_ - 1, 0);
        closed = closed || open_count_ == 0;
      }
    }
  }
  if (!closed) {
    return;
  }
  // A client's claim to have the port for itself would outlive it here, because this end keeps the
  // port open.
  ioctl(client_end_.get(), TIOCNXCL);
  // What it did not read is not for the next one.
  tcflush(client_end_.get(), TCIFLUSH);
  on_client_closed_();
}
