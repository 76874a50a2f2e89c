#include "Source/address_finder.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "Platform/ipv4_text.h"

namespace kavel::lidar {
namespace {

constexpr int32_t kWaitUs = 100'000;
constexpr std::chrono::milliseconds kPauseAfterError{20};

}  // namespace

AddressFinder::AddressFinder(uint16_t port, const std::string& local_ip,
                             const std::string& multicast_ip, AddressHandler on_first)
    : source_(port, local_ip, multicast_ip), on_first_(std::move(on_first)) {}

AddressFinder::~AddressFinder() { Stop(); }

bool AddressFinder::Start() {
  if (running_ || !source_.Open()) {
    return false;
  }
  bound_port_ = source_.BoundPort();
  running_ = true;
  thread_ = std::thread(&AddressFinder::Listen, this);
  return true;
}

void AddressFinder::Stop() {
  if (!running_) {
    return;
  }
  running_ = false;
  thread_.join();
  source_.Close();
}

void AddressFinder::Listen() {
  UdpPacket packet;
  int failures = 0;
  while (running_) {
    const int32_t count = source_.Receive(packet, UdpPacket::kCapacity, 0, kWaitUs);
    if (count < 0) {
      // The first one only arms the wait.
      if (++failures > 1) {
        std::this_thread::sleep_for(kPauseAfterError);
      }
      continue;
    }
    failures = 0;
    if (packet.timed_out == 0) {
      Count(packet.ip, static_cast<uint32_t>(count));
    }
  }
}

void AddressFinder::Count(uint32_t ip, uint32_t size) {
  const std::string address = DottedIpv4(reinterpret_cast<const uint8_t*>(&ip));
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    auto known = std::find_if(senders_.begin(), senders_.end(),
                              [&](const Sender& sender) { return sender.address == address; });
    if (known == senders_.end() && senders_.size() < kMaxSenders) {
      known = senders_.insert(senders_.end(), Sender{address, 0, 0});
    }
    if (known != senders_.end()) {
      ++known->packets;
      known->bytes += size;
    }
  }
  bytes_ += size;
  if (packets_++ == 0 && on_first_) {
    on_first_(address);
  }
}

std::vector<AddressFinder::Sender> AddressFinder::Senders() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return senders_;
}

}  // namespace kavel::lidar
