#include "udp_watch.h"

#include <utility>

#include "Platform/ipv4_text.h"

UdpWatch::UdpWatch(QObject* parent)
    : QObject(parent), summary_(tr("Not watching for point-cloud packets.")) {
  update_timer_.setInterval(ArrivalRate::kLookEveryMs);
  connect(&update_timer_, &QTimer::timeout, this, &UdpWatch::ShowArrivals);
}

UdpWatch::~UdpWatch() { Stop(); }

QString UdpWatch::sender() const {
  if (shown_.packets == 0) {
    return {};
  }
  const auto* octets = reinterpret_cast<const uint8_t*>(&shown_.ip);
  return QString::fromStdString(kavel::lidar::DottedIpv4(octets)) + ':' +
         QString::number(shown_.port);
}

bool UdpWatch::Start(const QString& port_text) {
  Stop();
  bool is_number = false;
  const uint port = port_text.trimmed().toUInt(&is_number);
  if (!is_number || port < 1 || port > 65535) {
    SetSummary(tr("The UDP port has to be a number from 1 to 65535."));
    return false;
  }
  using kavel::lidar::PacketListener;
  PacketListener::Handlers handlers;
  handlers.on_broken = [this] { broken_ = true; };
  auto listener =
      std::make_unique<PacketListener>(static_cast<uint16_t>(port), "", "", std::move(handlers));
  broken_ = false;
  if (!listener->Start()) {
    SetSummary(tr("UDP port %1 cannot be opened. Another program may be using it.").arg(port));
    return false;
  }
  listener_ = std::move(listener);
  shown_ = {};
  rate_.Restart(0);
  port_text_ = QString::number(port);
  update_timer_.start();
  SetSummary(tr("Waiting for packets on UDP port %1.").arg(port_text_));
  return true;
}

void UdpWatch::Stop() {
  if (!running()) {
    return;
  }
  update_timer_.stop();
  listener_.reset();
  rate_.Restart(0);
  SetSummary(tr("Not watching for point-cloud packets."));
}

void UdpWatch::ShowArrivals() {
  if (broken_) {
    Stop();
    SetSummary(tr("Receiving on UDP port %1 failed; the watch has ended.").arg(port_text_));
    return;
  }
  shown_ = listener_->totals();
  rate_.Look(shown_.packets);
  if (shown_.packets == 0) {
    return;
  }
  SetSummary(arriving() ? tr("%1 packets a second from %2.").arg(rate_.per_second()).arg(sender())
                        : tr("No packets for a second; the last came from %1.").arg(sender()));
}

void UdpWatch::SetSummary(const QString& text) {
  summary_ = text;
  emit changed();
}
