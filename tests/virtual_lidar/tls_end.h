#pragma once

#include <gtest/gtest.h>

#include <string>

#include "CmxClient/tls_client.h"
#include "support/bytes.h"
#include "support/test_folder.h"
#include "tls_demo.h"

/// Files as a user has them made, the same for all tests of a program.
inline std::string TlsFile(const std::string& name) {
  static const TestFolder folder;
  static const bool are_made = [] {
    std::string error;
    EXPECT_TRUE(WriteTlsFiles(folder.path(), &error)) << error;
    return error.empty();
  }();
  return are_made ? folder.path() + '/' + name : "";
}

inline kavel::lidar::TlsIdentity LidarFiles() {
  return {"", TlsFile("lidar.pem"), TlsFile("lidar-key.pem"), ""};
}

/// One end of a connection under TLS, with the waits of a `TcpEnd`.
class TlsEnd {
 public:
  /// Connects to a lidar that `LidarFiles` are given to, as whoever has this certificate.
  static TlsEnd To(uint16_t port, const std::string& cert = "", const std::string& key = "") {
    return TlsEnd(port, {TlsFile("ca.pem"), cert, key, ""});
  }

  void Send(Bytes bytes) {
    const auto size = static_cast<uint16_t>(bytes.size());
    EXPECT_EQ(client_.Send(bytes.data(), size, 0), size);
  }
  Bytes Read(size_t size) {
    Bytes bytes(size);
    size_t total = 0;
    while (total < size) {
      last_ = client_.Receive(bytes.data() + total, static_cast<uint32_t>(size - total), 0);
      if (last_ < 1) {
        break;
      }
      total += static_cast<size_t>(last_);
    }
    bytes.resize(total);
    return bytes;
  }
  bool EndsHere() { return Read(1).empty() && last_ == 0; }
  std::string Failure() { return client_.OpenFailure(); }

 private:
  TlsEnd(uint16_t port, const kavel::lidar::TlsIdentity& identity) : client_(identity) {
    constexpr uint32_t kPatienceS = 5;
    EXPECT_TRUE(client_.TryOpen(0, "127.0.0.1", port, false, nullptr, nullptr, nullptr, kPatienceS))
        << client_.OpenFailure();
    client_.SetTimeout(kPatienceS * 1000, kPatienceS * 1000);
  }

  kavel::lidar::TlsClient client_;
  int32_t last_ = 0;
};
