#include "uart_watch.h"

#include "tevron_manager.h"

UartWatch::UartWatch(QObject* parent) : QObject(parent) {
  timer_.setInterval(ArrivalRate::kLookEveryMs);
  connect(&timer_, &QTimer::timeout, this, &UartWatch::Look);
}

QObject* UartWatch::manager() const { return manager_; }

void UartWatch::SetManager(QObject* manager) {
  if (manager_ != nullptr) {
    disconnect(manager_, nullptr, this, nullptr);
  }
  manager_ = qobject_cast<TevronManager*>(manager);
  if (manager_ != nullptr) {
    connect(manager_, &TevronManager::isConnectedChanged, this, &UartWatch::Look);
  }
  emit managerChanged();
  Look();
}

QString UartWatch::summary() const {
  if (!running()) {
    return {};
  }
  const QString port = QString::fromStdString(shown_->port);
  if (arriving()) {
    return tr("%1 packets a second on %2.").arg(rate_.per_second()).arg(port);
  }
  return shown_->packets == 0 ? tr("No packets on %1 yet.").arg(port)
                              : tr("No packets for a second on %1.").arg(port);
}

QString UartWatch::tally() const {
  if (!running() || shown_->packets == 0) {
    return {};
  }
  const uint64_t stray = shown_->stray_bytes - stray_before_;
  const QString packets = tr("%1 packets so far").arg(shown_->packets);
  return stray == 0 ? packets : tr("%1, %2 damaged bytes").arg(packets).arg(stray);
}

void UartWatch::Look() {
  const std::optional<UartArrivals> now = manager_ == nullptr ? std::nullopt : manager_->UartNow();
  if (!now) {
    timer_.stop();
  } else if (!shown_ || now->packets < shown_->packets) {
    // Another connection: it counts anew.
    timer_.start();
    rate_.Restart(now->packets);
    stray_before_ = now->stray_bytes;
  } else {
    rate_.Look(now->packets);
    // Whoever joins a line finds half a packet first.
    stray_before_ = shown_->packets == 0 ? now->stray_bytes : stray_before_;
  }
  shown_ = now;
  emit changed();
}
