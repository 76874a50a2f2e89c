#include "upgrade_choice.h"

#include <QLocale>

#include "upgrade/upgrade_file.h"

namespace {

QString SizeText(uint64_t bytes) {
  return QLocale::c().formattedDataSize(static_cast<qint64>(bytes), 1);
}

}  // namespace

bool UpgradeChoice::Choose(const QUrl& url, bool package) {
  url_ = url;
  package_ = package;
  return LookAgain();
}

bool UpgradeChoice::LookAgain() {
  const UpgradeFileFacts facts = InspectUpgradeFile(url_, package_);
  name_ = QString::fromStdString(facts.name);
  size_ = facts.size_bytes > 0 ? SizeText(facts.size_bytes) : QString();
  problem_ = QString::fromStdString(facts.problem);
  misnamed_ = !url_.toString().endsWith(QLatin1String(".patch"));
  if (misnamed_) {
    problem_ = QStringLiteral("Upgrade package rejected: it has to be a .patch file");
  }
  components_.clear();
  for (const UpgradeFileFacts::Component& component : facts.components) {
    // Kept in one piece where a line is full.
    components_ << QStringLiteral("%1 %2")
                       .arg(QString::fromStdString(component.name), SizeText(component.size_bytes))
                       .replace(QLatin1Char(' '), QChar(QChar::Nbsp));
  }
  emit changed();
  return problem_.isEmpty();
}

void UpgradeChoice::Clear() {
  url_.clear();
  name_.clear();
  size_.clear();
  problem_.clear();
  misnamed_ = false;
  components_.clear();
  emit changed();
}
