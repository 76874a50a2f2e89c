#include "server/byte_stream.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace {

ssize_t WriteTo(int fd, const uint8_t* data, size_t size) {
  const ssize_t sent = send(fd, data, size, MSG_NOSIGNAL);
  return sent < 0 && errno == ENOTSOCK ? write(fd, data, size) : sent;
}

}  // namespace

void ByteStream::ResetOnClose() const {
  const linger at_once = {1, 0};
  setsockopt(in_fd_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
}

ssize_t PlainStream::Read(uint8_t* data, size_t size) { return read(in_fd(), data, size); }

ssize_t PlainStream::Write(const uint8_t* data, size_t size) {
  return WriteTo(out_fd(), data, size);
}

ssize_t PlainStream::WriteBack(const uint8_t* data, size_t size) {
  return WriteTo(in_fd(), data, size);
}
