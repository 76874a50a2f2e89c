#include "server/line_log.h"

#include <poll.h>
#include <unistd.h>

void LineLog::Write(const std::string& line) const {
  if (fd_ < 0) {
    return;
  }
  const std::string whole = line + '\n';
  pollfd ready = {fd_, POLLOUT, 0};
  // A pipe that is ready takes a line of up to 4096 bytes without blocking.
  if (poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0) {
    return;
  }
  [[maybe_unused]] const ssize_t written = write(fd_, whole.data(), whole.size());
}
