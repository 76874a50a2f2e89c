#include "server/point_cloud_sender.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

#include "Platform/ipv4_text.h"
#include "Wire/big_endian.h"
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

PointCloudSender::PointCloudSender(EventLoop* loop, const PointCloudTarget& target)
    : loop_(loop),
      target_(target),
      fd_(socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)),
      start_(EventLoop::Clock::now()) {
  if (!fd_.valid()) {
    throw std::system_error(errno, std::generic_category(), "no UDP socket");
  }
  SendDue();
}

PointCloudSender::~PointCloudSender() { loop_->Cancel(timer_); }

void PointCloudSender::SendDue() {
  const auto elapsed =
      std::chrono::duration_cast<microseconds>(EventLoop::Clock::now() - start_).count();
  const uint64_t due = 1 + static_cast<uint64_t>(elapsed) * target_.packets_per_second / 1000000;
  const uint64_t burst = std::min(due - std::min(due, sent_), kMaxBurst);
  for (uint64_t i = 0; i < burst; ++i) {
    SendOne();
  }
  sent_ = due;
  // Fast streams leave a bunch each millisecond, slow ones packet by packet.
  const microseconds pause(std::max<uint32_t>(1000, 1000000 / target_.packets_per_second));
  timer_ = loop_->After(pause, [this] { SendDue(); });
}

void PointCloudSender::SendOne() {
  const auto elapsed =
      std::chrono::duration_cast<microseconds>(EventLoop::Clock::now() - start_).count();
  std::vector<uint8_t> packet = {'K', 'P', 'C', 'L'};
  packet.reserve(kPacketSize);
  kavel::lidar::AppendBigEndian32(packet, static_cast<uint32_t>(sent_));
  kavel::lidar::AppendBigEndian64(packet, static_cast<uint64_t>(elapsed));
  for (size_t point = 0; packet.size() < kPacketSize; ++point) {
    const size_t channel = point % kChannels;
    const size_t step = (sent_ * 20 + point / kChannels) % kAzimuthSteps;
    kavel::lidar::AppendBigEndian16(packet, static_cast<uint16_t>(step));
    kavel::lidar::AppendBigEndian16(packet, static_cast<uint16_t>(channel));
    kavel::lidar::AppendBigEndian16(packet, static_cast<uint16_t>(2000 + 40 * channel + step % 97));
    kavel::lidar::AppendBigEndian16(packet, static_cast<uint16_t>(64 + step % 128));
  }
  ++sent_;
  sockaddr_in to = {};
  to.sin_family = AF_INET;
  to.sin_port = htons(target_.port);
  std::memcpy(&to.sin_addr, target_.address.data(), target_.address.size());
  sendto(fd_.get(), packet.data(), packet.size(), 0, reinterpret_cast<const sockaddr*>(&to),
         sizeof to);
}
