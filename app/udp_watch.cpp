#include "udp_watch.h"

#include <cstring>
#include <utility>

#include "Source/socket_source.h"

namespace {

constexpr int kUpdateTimeMs = 250;
constexpr int32_t kWaitForPacketUs = 100000;
constexpr uint16_t kLargestPacket = 1500;
constexpr int kMostFailuresInARow = 3;

QString AddressText(uint32_t ip_network_order, uint16_t port) {
  uint8_t bytes[4];
  std::memcpy(bytes, &ip_network_order, sizeof bytes);
  return QStringLiteral("%1.%2.%3.%4:%5")
      .arg(bytes[0])
      .arg(bytes[1])
      .arg(bytes[2])
      .arg(bytes[3])
      .arg(port);
}

}  // namespace

UdpWatch::UdpWatch(QObject* parent)
    : QObject(parent), summary_(tr("Not watching for point-cloud packets.")) {
  update_timer_.setInterval(kUpdateTimeMs);
  connect(&update_timer_, &QTimer::timeout, this, &UdpWatch::ShowArrivals);
}

UdpWatch::~UdpWatch() { Stop(); }

QString UdpWatch::sender() const {
  return shown_.packets == 0 ? QString() : AddressText(shown_.ip, shown_.port);
}

bool UdpWatch::Start(const QString& port_text) {
  Stop();
  bool is_number = false;
  const uint port = port_text.trimmed().toUInt(&is_number);
  if (!is_number || port < 1 || port > 65535) {
    SetSummary(tr("The UDP port has to be a number from 1 to 65535."));
    return false;
  }
  auto source = std::make_unique<kavel::lidar::SocketSource>(static_cast<uint16_t>(port), "", "");
  if (!source->Open()) {
    SetSummary(tr("UDP port %1 cannot be opened. Another program may be using it.").arg(port));
    return false;
  }
  source_ = std::move(source);
  arrivals_ = {};
  shown_ = {};
  packets_before_.fill(0);
  packets_per_second_ = 0;
  port_text_ = QString::number(port);
  stopping_ = false;
  broken_ = false;
  receiver_ = std::thread(&UdpWatch::Receive, this);
  update_timer_.start();
  SetSummary(tr("Waiting for packets on UDP port %1.").arg(port_text_));
  return true;
}

void UdpWatch::Stop() {
  if (!running()) {
    return;
  }
  update_timer_.stop();
  stopping_ = true;
  receiver_.join();
  source_->Close();
  source_.reset();
  packets_per_second_ = 0;
  SetSummary(tr("Not watching for point-cloud packets."));
}

void UdpWatch::Receive() {
  kavel::lidar::UdpPacket packet;
  int failures_in_a_row = 0;
  while (!stopping_ && !broken_) {
    const int32_t received = source_->Receive(packet, kLargestPacket, 0, kWaitForPacketUs);
    if (received > 0) {
      const std::lock_guard<std::mutex> lock(arrivals_mutex_);
      ++arrivals_.packets;
      arrivals_.bytes += static_cast<uint64_t>(received);
      arrivals_.ip = packet.ip;
      arrivals_.port = packet.port;
    }
    // One refusal before every wait is the source's way; more of them mean a dead socket.
    failures_in_a_row = received < 0 ? failures_in_a_row + 1 : 0;
    broken_ = failures_in_a_row == kMostFailuresInARow;
  }
}

void UdpWatch::ShowArrivals() {
  if (broken_) {
    Stop();
    SetSummary(tr("Receiving on UDP port %1 failed; the watch has ended.").arg(port_text_));
    return;
  }
  {
    const std::lock_guard<std::mutex> lock(arrivals_mutex_);
    shown_ = arrivals_;
  }
  uint64_t& a_second_ago = packets_before_[updates_++ % packets_before_.size()];
  packets_per_second_ = shown_.packets - a_second_ago;
  a_second_ago = shown_.packets;
  if (shown_.packets == 0) {
    return;
  }
  SetSummary(packets_per_second_ == 0
                 ? tr("No packets for a second; the last came from %1.").arg(sender())
                 : tr("%1 packets a second from %2.").arg(packets_per_second_).arg(sender()));
}

void UdpWatch::SetSummary(const QString& text) {
  summary_ = text;
  emit changed();
}
