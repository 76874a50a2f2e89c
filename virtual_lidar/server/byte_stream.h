#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

/// What a link reads from and writes to, without ever waiting: one descriptor or two, which stay
/// their owner's, are non-blocking and outlive the stream.
class ByteStream {
 public:
  ByteStream(int in_fd, int out_fd) : in_fd_(in_fd), out_fd_(out_fd) {}
  virtual ~ByteStream() = default;
  ByteStream(const ByteStream&) = delete;
  ByteStream& operator=(const ByteStream&) = delete;

  /// What to wait on for more to read, and for room to write.
  int in_fd() const { return in_fd_; }
  int out_fd() const { return out_fd_; }

  /// As read(2) and write(2): the count, 0 at the end, -1 with `errno`. A far end that has gone
  /// raises no signal.
  virtual ssize_t Read(uint8_t* data, size_t size) = 0;
  virtual ssize_t Write(const uint8_t* data, size_t size) = 0;
  /// Writes to where is read from, as a line does that echoes.
  virtual ssize_t WriteBack(const uint8_t* data, size_t size) = 0;

  /// Closing the descriptor from now on throws away what was not sent and resets the connection;
  /// no effect on what is no socket.
  void ResetOnClose() const;

  /// Whether a read that would wait does so for room to write.
  virtual bool ReadsNeedRoom() const { return false; }
  /// Why nothing more can be read, where that is worth a line; "" otherwise.
  virtual std::string Failure() const { return {}; }

 private:
  const int in_fd_;
  const int out_fd_;
};

/// The descriptors as they are: a socket, a serial port, a pair of them.
class PlainStream : public ByteStream {
 public:
  using ByteStream::ByteStream;

  ssize_t Read(uint8_t* data, size_t size) override;
  ssize_t Write(const uint8_t* data, size_t size) override;
  ssize_t WriteBack(const uint8_t* data, size_t size) override;
};
