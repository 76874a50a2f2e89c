#include "link_watch.h"

#include <QDateTime>
#include <utility>

#include "tevron_manager.h"

namespace {

constexpr int kLookEveryMs = 100;

QString LocalTime(const std::chrono::system_clock::time_point& time) {
  const auto since_epoch =
      std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
  return QDateTime::fromMSecsSinceEpoch(since_epoch.count()).toString(QStringLiteral("hh:mm:ss"));
}

QString Text(const std::string& text) { return QString::fromStdString(text); }

QVariantMap MapOf(const CertifiedLidar& lidar) {
  return {{"place", Text(lidar.place)},
          {"serialNumber", Text(lidar.serial_number)},
          {"subject", Text(lidar.certificate.subject)},
          {"validFrom", Text(lidar.certificate.valid_from)},
          {"validUntil", Text(lidar.certificate.valid_until)},
          {"sha256", Text(FingerprintText(lidar.certificate.sha256))}};
}

}  // namespace

LinkWatch::LinkWatch(QObject* parent) : QObject(parent) {
  timer_.setInterval(kLookEveryMs);
  connect(&timer_, &QTimer::timeout, this, &LinkWatch::Look);
}

QObject* LinkWatch::manager() const { return manager_; }

void LinkWatch::SetManager(QObject* manager) {
  if (manager_ != nullptr) {
    disconnect(manager_, nullptr, this, nullptr);
  }
  manager_ = qobject_cast<TevronManager*>(manager);
  if (manager_ != nullptr) {
    for (const auto news :
         {&TevronManager::isConnectedChanged, &TevronManager::isUpgradingChanged,
          &TevronManager::myMapChanged, &TevronManager::myTimerMapChanged,
          &TevronManager::lumoLidarInfoChanged, &TevronManager::lidarModelChanged}) {
      connect(manager_, news, this, &LinkWatch::Look);
    }
    connect(manager_, &TevronManager::sendLogMessage, this,
            [this](const QString&, const QString& type) {
              if (type == QLatin1String("ERROR")) {
                Look();
              }
            });
    now_ = manager_->LinkNow();
  }
  emit managerChanged();
  Look();
}

QString LinkWatch::news() const {
  if (now_.awaiting) {
    return tr("Waiting until %2 for the lidar at %1, which restarts or has taken new settings.")
        .arg(place(), LocalTime(now_.give_up_at));
  }
  if (silent()) {
    return tr("No answer since %1 from the lidar on %2. It may be off, restarting, or not on this "
              "line.")
        .arg(LocalTime(*now_.silent_since), place());
  }
  if (!lost()) {
    return {};
  }
  if (now_.connecting) {
    return tr("Connecting to %1.").arg(place());
  }
  const QString news =
      waited_in_vain_ ? tr("No lidar at %1 until %2: %3") : tr("Connection to %1 lost at %2: %3");
  return news.arg(lost_place_, LocalTime(now_.loss->at), QString::fromStdString(now_.loss->reason));
}

QString LinkWatch::read_at() const { return now_.read_at ? LocalTime(*now_.read_at) : QString(); }

QString LinkWatch::security() const {
  if (!now_.certificate) {
    return {};
  }
  const kavel::lidar::TlsCertificate& certificate = now_.certificate->certificate;
  const QString because = now_.certificate->trusted_by == TrustedBy::kAuthority
                              ? tr("The certificate authority of this model vouches for it.")
                              : tr("It is the one that was trusted on this computer.");
  return tr("The link is encrypted with TLS. The lidar's certificate: %1, valid until %2, SHA-256 "
            "%3. %4")
      .arg(Text(certificate.subject), Text(certificate.valid_until),
           Text(FingerprintText(certificate.sha256)), because);
}

void LinkWatch::AwaitLidar() {
  if (manager_ != nullptr) {
    manager_->AwaitLidar();
    Look();
  }
}

void LinkWatch::AwaitLidarAt(const QString& address) {
  if (manager_ != nullptr) {
    manager_->AwaitLidarAt(address.toStdString());
    Look();
  }
}

void LinkWatch::Trust(const QVariantMap& lidar) {
  if (manager_ == nullptr || lidar != MapOf(asked_about_)) {
    return;
  }
  const std::string problem = TrustedLidars().Remember(asked_about_);
  if (problem.empty()) {
    manager_->ConnectLidar();
    Look();
  } else {
    manager_->setErrorMsg(Text(problem));
  }
}

void LinkWatch::Look() {
  if (manager_ == nullptr) {
    return;
  }
  const LinkSnapshot before = std::exchange(now_, manager_->LinkNow());
  if (now_.loss && (!before.loss || before.loss->at != now_.loss->at)) {
    waited_in_vain_ = before.awaiting;
    lost_place_ = place();
  }
  if (!now_.connecting && !silent() && !manager_->UpgradeNow().running) {
    timer_.stop();
  } else if (!timer_.isActive()) {
    timer_.start();
  }
  emit changed();
  if (now_.untrusted && now_.untrusted->verdict == CertificateVerdict::kUnknown &&
      !before.untrusted) {
    asked_about_ = now_.untrusted->lidar;
    emit certificateAsked(MapOf(asked_about_));
  }
  if (now_.next_addresses != before.next_addresses && !now_.next_address.empty()) {
    // Later, since what is written is read back before the window is free again.
    QMetaObject::invokeMethod(
        this,
        [this, address = QString::fromStdString(now_.next_address)] {
          emit nextAddressTold(address);
        },
        Qt::QueuedConnection);
  }
}
