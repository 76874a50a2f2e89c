#include "settings_watch.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>
#include <algorithm>

#include "downloads/file_names.h"
#include "lidar_settings.h"
#include "settings_files/settings_file.h"
#include "settings_files/snapshots.h"
#include "tevron_manager.h"

namespace {

constexpr int kLookEveryMs = 100;

QVariantMap MapOf(const ComparedSide& side) {
  if (side.settings == nullptr) {
    return {};
  }
  const SettingsFile& file = *side.settings;
  const QDateTime time = QDateTime::fromString(QString::fromStdString(file.time), Qt::ISODate);
  const QString when =
      time.isValid() ? QLocale::c().toString(time.toLocalTime(), "yyyy-MM-dd hh:mm:ss") : QString();
  const QString path = QString::fromStdString(side.path);
  return {
      {"title", path.isEmpty() ? SettingsWatch::tr("The lidar now") : QFileInfo(path).fileName()},
      {"model", QString::fromStdString(file.model)},
      {"serial", QString::fromStdString(file.serial_number)},
      {"version", QString::fromStdString(file.firmware)},
      {"time", when}};
}

}  // namespace

SettingsWatch::SettingsWatch(QObject* parent) : QObject(parent) {
  timer_.setInterval(kLookEveryMs);
  connect(&timer_, &QTimer::timeout, this, &SettingsWatch::Look);
}

QObject* SettingsWatch::manager() const { return manager_; }

void SettingsWatch::SetManager(QObject* manager) {
  if (manager_ != nullptr) {
    disconnect(&manager_->Settings(), nullptr, this, nullptr);
  }
  manager_ = qobject_cast<TevronManager*>(manager);
  if (manager_ != nullptr) {
    connect(&manager_->Settings(), &LidarSettings::changed, this, &SettingsWatch::Look);
  }
  emit managerChanged();
  Look();
}

QString SettingsWatch::activity() const {
  switch (now_.task) {
    case SettingsTask::kNone:
      return {};
    case SettingsTask::kSaving:
    case SettingsTask::kReading:
    case SettingsTask::kComparing:
      return tr("Reading the settings…");
    case SettingsTask::kApplying:
      return tr("Writing the settings…");
    case SettingsTask::kSnapshot:
      return tr("Saving a snapshot of the settings…");
  }
  return {};
}

double SettingsWatch::fraction() const {
  return now_.all == 0 ? -1.0 : static_cast<double>(now_.done) / static_cast<double>(now_.all);
}

QVariantMap SettingsWatch::left() const {
  return comparison_ == nullptr ? QVariantMap() : MapOf(comparison_->left);
}

QVariantMap SettingsWatch::right() const {
  return comparison_ == nullptr ? QVariantMap() : MapOf(comparison_->right);
}

QStringList SettingsWatch::warnings() const {
  QStringList warnings;
  if (comparison_ != nullptr) {
    for (const std::string& warning : comparison_->warnings) {
      warnings << QString::fromStdString(warning);
    }
  }
  return warnings;
}

QString SettingsWatch::refusal() const {
  return comparison_ == nullptr ? QString() : QString::fromStdString(comparison_->refusal);
}

bool SettingsWatch::MayUseLidar() {
  return manager_ != nullptr && manager_->Settings().MayUseLidar();
}

QString SettingsWatch::SuggestedName() const {
  const QString number = manager_ == nullptr ? QString() : manager_->getLidarSN();
  return FileNamePart(number).replace('.', '_') + '_' + TimeNow("yyyyMMdd_hhmmss") +
         kSettingsSuffix;
}

void SettingsWatch::Save(const QUrl& file) {
  if (manager_ != nullptr) {
    manager_->Settings().Save(file.toLocalFile());
  }
}

void SettingsWatch::Compare(const QUrl& file, bool to_apply) {
  if (manager_ != nullptr) {
    ticks_all_ = to_apply;
    manager_->Settings().CompareWithLidar(file.toLocalFile());
  }
}

void SettingsWatch::CompareFiles(const QUrl& left, const QUrl& right) {
  if (manager_ != nullptr) {
    manager_->Settings().CompareFiles(left.toLocalFile(), right.toLocalFile());
  }
}

void SettingsWatch::Open(const QUrl& file) {
  if (manager_ != nullptr) {
    manager_->Settings().Open(file.toLocalFile());
  }
}

void SettingsWatch::Apply() {
  if (manager_ != nullptr) {
    manager_->Settings().Apply(rows_.Ticked());
  }
}

void SettingsWatch::Cancel() {
  if (manager_ != nullptr) {
    manager_->Settings().Cancel();
  }
}

void SettingsWatch::TakeSnapshot(const QString& reason) {
  if (manager_ == nullptr) {
    return;
  }
  const auto before =
      reason == QLatin1String("reset") ? SnapshotReason::kReset : SnapshotReason::kApply;
  manager_->Settings().TakeSnapshot(
      before, [self = QPointer<SettingsWatch>(this), reason](const std::string& problem) {
        if (self != nullptr) {
          emit self->snapshotTaken(reason, QString::fromStdString(problem));
        }
      });
}

QVariantList SettingsWatch::Snapshots() const {
  QVariantList list;
  for (const Snapshot& snapshot : ::Snapshots().All()) {
    list << QVariantMap{{"url", QUrl::fromLocalFile(snapshot.path)},
                        {"time", QLocale::c().toString(snapshot.time, "yyyy-MM-dd hh:mm:ss")},
                        {"reason", QString::fromLatin1(TextOf(snapshot.reason))},
                        {"model", QString::fromStdString(snapshot.model)},
                        {"serial", QString::fromStdString(snapshot.serial_number)}};
  }
  return list;
}

QString SettingsWatch::FirmwareOf(const QUrl& file) const {
  std::string problem;
  const auto settings = LoadSettings(file.toLocalFile(), &problem);
  return settings ? QString::fromStdString(settings->firmware) : QString();
}

void SettingsWatch::Look() {
  now_ = manager_ == nullptr ? SettingsStatus() : manager_->Settings().Now();
  if (running() != timer_.isActive()) {
    running() ? timer_.start() : timer_.stop();
  }
  TakeComparison();
  emit changed();
}

// What was applied belongs to the comparison that is there already, and leaves the user in it.
void SettingsWatch::TakeComparison() {
  const auto shown = manager_ == nullptr ? nullptr : manager_->Settings().comparison();
  if (shown == comparison_) {
    return;
  }
  const bool is_same = shown != nullptr && comparison_ != nullptr &&
                       shown->left.settings == comparison_->left.settings;
  comparison_ = shown;
  if (is_same) {
    rows_.Renew(shown);
    return;
  }
  rows_.Show(shown, ticks_all_);
  if (shown != nullptr) {
    emit comparedAnew();
  }
}
