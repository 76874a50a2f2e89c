#include "support/pty_pair.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>

namespace kavel::lidar::testing {
namespace {

void Require(bool condition, const char* what) {
  if (condition) {
    return;
  }
  std::perror(what);
  std::abort();
}

}  // namespace

PtyPair::PtyPair() {
  master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  Require(master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0, "posix_openpt");
  char name[128];
  Require(ptsname_r(master_, name, sizeof name) == 0, "ptsname_r");
  path_ = name;
  slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
  Require(slave_ >= 0, name);
  // Without this the terminal would echo what is written before the port has been opened.
  termios line{};
  Require(tcgetattr(slave_, &line) == 0, "tcgetattr");
  cfmakeraw(&line);
  Require(tcsetattr(slave_, TCSANOW, &line) == 0, "tcsetattr");
}

PtyPair::~PtyPair() {
  HangUp();
  close(slave_);
}

void PtyPair::Write(const Bytes& bytes) const {
  size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t count = write(master_, bytes.data() + written, bytes.size() - written);
    Require(count > 0, "write to the pseudo-terminal");
    written += static_cast<size_t>(count);
  }
}

Bytes PtyPair::Read(int timeout_ms) const {
  pollfd waiting{master_, POLLIN, 0};
  if (poll(&waiting, 1, timeout_ms) <= 0) {
    return {};
  }
  Bytes bytes(4096);
  const ssize_t count = read(master_, bytes.data(), bytes.size());
  bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
  return bytes;
}

void PtyPair::HangUp() {
  if (master_ >= 0) {
    close(master_);
  }
  master_ = -1;
}

}  // namespace kavel::lidar::testing
