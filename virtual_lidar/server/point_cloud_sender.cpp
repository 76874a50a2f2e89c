#include "server/point_cloud_sender.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>
#include <utility>

#include "Platform/ipv4_text.h"
#include "Wire/big_endian.h"
#include "Wire/point_packet.h"
#include "server/unique_fd.h"
#include "variables/number_text.h"

namespace {

using std::chrono::microseconds;

constexpr uint32_t kAzimuthSteps = 36000;  // hundredths of a degree in a turn
constexpr size_t kChannels = 16;
// A stall is made good in bursts of at most this many packets.
constexpr uint64_t kMaxBurst = 1000;

bool ReadNumber(const std::string& text, uint32_t lowest, uint32_t highest, uint32_t* number) {
  *number = WholeNumber<uint32_t>(text).value_or(0);
  return *number >= lowest && *number <= highest;
}

}  // namespace

bool ParsePointCloudTarget(const std::string& text, PointCloudTarget* target, std::string* error) {
  const size_t colon = text.find(':');
  const size_t at = text.find('@');
  uint32_t port = 0;
  *target = PointCloudTarget();
  if (colon == std::string::npos ||
      !kavel::lidar::ParseDottedIpv4(text.substr(0, colon), target->address.data()) ||
      !ReadNumber(text.substr(colon + 1, at == std::string::npos ? at : at - colon - 1), 1, 65535,
                  &port)) {
    *error = "\"" + text + "\" is not an address like 127.0.0.1:2368";
    return false;
  }
  target->port = static_cast<uint16_t>(port);
  if (at != std::string::npos && !ReadNumber(text.substr(at + 1), 1, PointCloudTarget::kMaxRate,
                                             &target->packets_per_second)) {
    *error = "the rate in \"" + text + "\" is not a number of packets per second from 1 to " +
             std::to_string(PointCloudTarget::kMaxRate);
    return false;
  }
  return true;
}

PointCloudSender::Outlet UdpOutlet(const PointCloudTarget& target) {
  const auto fd =
      std::make_shared<UniqueFd>(socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!fd->valid()) {
    throw std::system_error(errno, std::generic_category(), "no UDP socket");
  }
  sockaddr_in to = {};
  to.sin_family = AF_INET;
  to.sin_port = htons(target.port);
  std::memcpy(&to.sin_addr, target.address.data(), target.address.size());
  return [fd, to](const std::vector<uint8_t>& packet) {
    sendto(fd->get(), packet.data(), packet.size(), 0, reinterpret_cast<const sockaddr*>(&to),
           sizeof to);
  };
}

PointCloudSender::PointCloudSender(EventLoop* loop, uint32_t packets_per_second, Outlet outlet)
    : loop_(loop),
      packets_per_second_(packets_per_second),
      outlet_(std::move(outlet)),
      start_(EventLoop::Clock::now()) {
  SendDue();
}

PointCloudSender::~PointCloudSender() { loop_->Cancel(timer_); }

void PointCloudSender::SendDue() {
  const auto elapsed =
      std::chrono::duration_cast<microseconds>(EventLoop::Clock::now() - start_).count();
  const uint64_t due = 1 + static_cast<uint64_t>(elapsed) * packets_per_second_ / 1000000;
  const uint64_t burst = std::min(due - std::min(due, sent_), kMaxBurst);
  for (uint64_t i = 0; i < burst; ++i) {
    SendOne();
  }
  sent_ = due;
  // Fast streams leave a bunch each millisecond, slow ones packet by packet.
  const microseconds pause(std::max<uint32_t>(1000, 1000000 / packets_per_second_));
  timer_ = loop_->After(pause, [this] { SendDue(); });
}

void PointCloudSender::SendOne() {
  const auto elapsed =
      std::chrono::duration_cast<microseconds>(EventLoop::Clock::now() - start_).count();
  std::vector<uint8_t> packet = kavel::lidar::BuildPointPacketHead(static_cast<uint32_t>(sent_),
                                                                   static_cast<uint64_t>(elapsed));
  packet.reserve(kPacketSize);
  for (size_t point = 0; packet.size() < kPacketSize; ++point) {
    const size_t channel = point % kChannels;
    const size_t step = (sent_ * 20 + point / kChannels) % kAzimuthSteps;
    kavel::lidar::AppendBigEndian16(packet, static_cast<uint16_t>(step));
    kavel::lidar::AppendBigEndian16(packet, static_cast<uint16_t>(channel));
    kavel::lidar::AppendBigEndian16(packet, static_cast<uint16_t>(2000 + 40 * channel + step % 97));
    kavel::lidar::AppendBigEndian16(packet, static_cast<uint16_t>(64 + step % 128));
  }
  ++sent_;
  outlet_(packet);
}
