#pragma once

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "support/bytes.h"

/// A capture as Wireshark reads it, written packet by packet, a millisecond between them.
class CaptureFile {
 public:
  /// Of what: a network, or the bytes of a serial line as they are.
  enum class Link : uint32_t { kEthernet = 1, kSerialLine = 147 };

  CaptureFile(const std::string& path, Link link) : file_(path, std::ios::binary), path_(path) {
    Little(0xA1B2C3D4, 4);
    Little(2, 2);
    Little(4, 2);
    Little(0, 8);
    Little(65535, 4);
    Little(static_cast<uint32_t>(link), 4);
  }

  void Pause(uint64_t milliseconds) { now_us_ += milliseconds * 1000; }

  /// One portion of a serial line.
  void AddPortion(const Bytes& bytes) {
    Pause(1);
    Little(now_us_ / 1000000, 4);
    Little(now_us_ % 1000000, 4);
    Little(bytes.size(), 4);
    Little(bytes.size(), 4);
    file_.write(reinterpret_cast<const char*>(bytes.data()),
                static_cast<std::streamsize>(bytes.size()));
    file_.flush();
    ++packets_;
  }

  /// A TCP segment of a connection between `client_port` and the lidar's `lidar_port`.
  void AddSegment(uint16_t client_port, uint16_t lidar_port, bool is_from_lidar,
                  const Bytes& bytes) {
    const uint16_t ports[] = {client_port, lidar_port};
    const Bytes addresses[] = {{10, 0, 0, 1}, {10, 0, 0, 2}};
    const Bytes ethernet = Bytes(12) + Bytes{8, 0};
    const Bytes ip = Bytes{0x45, 0} + Big(40 + bytes.size(), 2) + Bytes{0, 0, 0, 0, 64, 6, 0, 0} +
                     addresses[is_from_lidar ? 1 : 0] + addresses[is_from_lidar ? 0 : 1];
    uint32_t& sent = sent_[{client_port, is_from_lidar}];
    const Bytes tcp = Big(ports[is_from_lidar ? 1 : 0], 2) + Big(ports[is_from_lidar ? 0 : 1], 2) +
                      Big(1 + sent, 4) + Big(1 + sent_[{client_port, !is_from_lidar}], 4) +
                      Bytes{0x50, 0x18, 0xFF, 0xFF, 0, 0, 0, 0};
    sent += static_cast<uint32_t>(bytes.size());
    AddPortion(ethernet + ip + tcp + bytes);
  }

  const std::string& path() const { return path_; }
  int packets() const { return packets_; }

 private:
  static Bytes Big(uint64_t number, size_t size) {
    Bytes bytes(size);
    for (size_t i = size; i > 0; --i, number >>= 8) {
      bytes[i - 1] = static_cast<uint8_t>(number);
    }
    return bytes;
  }
  void Little(uint64_t number, int size) {
    for (; size > 0; --size, number >>= 8) {
      file_.put(static_cast<char>(number));
    }
  }

  std::ofstream file_;
  std::string path_;
  uint64_t now_us_ = 1'000'000'000;
  int packets_ = 0;
  std::map<std::pair<uint16_t, bool>, uint32_t> sent_;  // by client port and direction
};
