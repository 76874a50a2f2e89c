#include "upgrade_watch.h"

#include <QVariantMap>
#include <algorithm>

#include "tevron_manager.h"

namespace {

constexpr char kUnreadNumber[] = "xxxxxxxx";
constexpr int kLookEveryMs = 200;
constexpr qint64 kShowPaceEveryMs = 1000;

QString StateText(UpgradeStepState state) {
  switch (state) {
    case UpgradeStepState::kPending:
      return QStringLiteral("pending");
    case UpgradeStepState::kRunning:
      return QStringLiteral("running");
    case UpgradeStepState::kDone:
      return QStringLiteral("done");
    case UpgradeStepState::kFailed:
      return QStringLiteral("failed");
    case UpgradeStepState::kSkipped:
      return QStringLiteral("skipped");
  }
  return {};
}

}  // namespace

UpgradeWatch::UpgradeWatch(QObject* parent) : QObject(parent) {
  clock_.start();
  timer_.setInterval(kLookEveryMs);
  connect(&timer_, &QTimer::timeout, this, &UpgradeWatch::Look);
}

QObject* UpgradeWatch::manager() const { return manager_; }

void UpgradeWatch::SetManager(QObject* manager) {
  if (manager_ != nullptr) {
    disconnect(manager_, nullptr, this, nullptr);
  }
  manager_ = qobject_cast<TevronManager*>(manager);
  if (manager_ != nullptr) {
    // What may begin an upgrade, and what tells another version or model.
    for (const auto news :
         {&TevronManager::isUpgradingChanged, &TevronManager::isConnectedChanged,
          &TevronManager::myMapChanged, &TevronManager::lumoLidarInfoChanged,
          &TevronManager::lidarModelChanged, &TevronManager::connectTypeChanged}) {
      connect(manager_, news, this, &UpgradeWatch::Look);
    }
  }
  emit managerChanged();
  Look();
}

QVariantList UpgradeWatch::steps() const {
  QVariantList steps;
  for (const UpgradeStep& step : now_.steps) {
    steps << QVariantMap{{QStringLiteral("name"), QString::fromStdString(step.name)},
                         {QStringLiteral("state"), StateText(step.state)}};
  }
  return steps;
}

int UpgradeWatch::sent_kib() const { return std::min(now_.progress_kib, now_.total_kib); }

void UpgradeWatch::Look() {
  if (manager_ == nullptr) {
    return;
  }
  now_ = manager_->UpgradeNow();
  running_version_ = QString::fromStdString(manager_->RunningVersion());
  const QString number = manager_->isConnected() ? manager_->getLidarSN() : QString();
  serial_number_ = number == kUnreadNumber ? QString() : number;
  takes_packages_ = manager_->TakesPackages();
  MeasurePace();
  if (!now_.running) {
    timer_.stop();
  } else if (!timer_.isActive()) {
    timer_.start();
  }
  emit changed();
}

void UpgradeWatch::MeasurePace() {
  const qint64 now_ms = clock_.elapsed();
  if (!now_.running || sent_kib() == 0) {
    pace_.Clear();
    kib_per_second_ = 0;
    seconds_left_ = -1;
    return;
  }
  pace_.Note(now_ms, sent_kib());
  if (now_ms - pace_shown_at_ms_ >= kShowPaceEveryMs) {
    pace_shown_at_ms_ = now_ms;
    kib_per_second_ = pace_.KibPerSecond();
    seconds_left_ = pace_.SecondsLeft(now_.total_kib);
  }
}
