#include "Source/packet_listener.h"

#include <utility>

#include "Platform/ipv4_text.h"

namespace kavel::lidar {
namespace {

constexpr int32_t kWaitUs = 100'000;
/// One refusal before every wait is the source's way; more of them mean a dead socket.
constexpr int kMostFailuresInARow = 3;

}  // namespace

PacketListener::PacketListener(uint16_t port, const std::string& local_ip,
                               const std::string& multicast_ip, Handlers handlers)
    : source_(port, local_ip, multicast_ip), handlers_(std::move(handlers)) {}

PacketListener::~PacketListener() { Stop(); }

bool PacketListener::Start() {
  if (thread_.joinable() || !source_.Open()) {
    return false;
  }
  bound_port_ = source_.BoundPort();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    totals_ = {};
  }
  stopping_ = false;
  thread_ = std::thread(&PacketListener::Listen, this);
  return true;
}

void PacketListener::Stop() {
  if (!thread_.joinable()) {
    return;
  }
  stopping_ = true;
  thread_.join();
  source_.Close();
}

void PacketListener::Listen() {
  UdpPacket packet;
  int failures = 0;
  while (!stopping_) {
    if (source_.Receive(packet, UdpPacket::kCapacity, 0, kWaitUs) >= 0) {
      failures = 0;
      if (packet.timed_out == 0) {
        Count(packet);
      }
    } else if (++failures == kMostFailuresInARow) {
      if (handlers_.on_broken) {
        handlers_.on_broken();
      }
      return;
    }
  }
}

void PacketListener::Count(const UdpPacket& packet) {
  bool is_first = false;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    is_first = totals_.packets++ == 0;
    totals_.ip = packet.ip;
    totals_.port = packet.port;
  }
  if (is_first && handlers_.on_first) {
    handlers_.on_first(DottedIpv4(reinterpret_cast<const uint8_t*>(&packet.ip)));
  }
}

PacketListener::Totals PacketListener::totals() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return totals_;
}

}  // namespace kavel::lidar
