#pragma once

#include <openssl/crypto.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// Bytes that must not outlive their use: the memory is overwritten before it is given back.
///
/// It can be moved and not copied, so that a secret has one owner and one place to be wiped. It
/// converts to nothing, so that it cannot slip into a log line. The size is fixed at construction,
/// because a vector that grows leaves unwiped copies behind.
class SecretBytes {
 public:
  SecretBytes() = default;
  explicit SecretBytes(size_t size) : bytes_(size) {}
  explicit SecretBytes(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}
  SecretBytes(const SecretBytes&) = delete;
  SecretBytes& operator=(const SecretBytes&) = delete;
  SecretBytes(SecretBytes&& other) noexcept : bytes_(std::move(other.bytes_)) {
    other.bytes_.clear();
  }
  SecretBytes& operator=(SecretBytes&& other) noexcept {
    if (this != &other) {
      Wipe();
      bytes_ = std::move(other.bytes_);
      other.bytes_.clear();
    }
    return *this;
  }
  ~SecretBytes() { Wipe(); }

  bool empty() const { return bytes_.empty(); }
  size_t size() const { return bytes_.size(); }
  const uint8_t* data() const { return bytes_.data(); }
  uint8_t* data() { return bytes_.data(); }

 private:
  void Wipe() { OPENSSL_cleanse(bytes_.data(), bytes_.size()); }

  std::vector<uint8_t> bytes_;
};
