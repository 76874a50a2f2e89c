#include "log_lines.h"

#include <QTime>
#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr int kBundleTimeMs = 30;

}  // namespace

LogLines::LogLines(QObject* parent) : QAbstractListModel(parent) {
  bundle_timer_.setSingleShot(true);
  bundle_timer_.setInterval(kBundleTimeMs);
  connect(&bundle_timer_, &QTimer::timeout, this, &LogLines::ShowBundle);
}

int LogLines::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant LogLines::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
    return {};
  }
  const Line& line = lines_[static_cast<size_t>(index.row())];
  switch (role) {
    case kTagRole:
      return line.tag;
    case kTextRole:
      return line.text;
    case kTimeRole:
      return line.time;
    case kLineRole:
      return QStringLiteral("%1 [%2] %3").arg(line.time, line.tag, line.text);
    default:
      return {};
  }
}

QHash<int, QByteArray> LogLines::roleNames() const {
  return {{kTagRole, "tag"}, {kTextRole, "text"}, {kTimeRole, "time"}, {kLineRole, "line"}};
}

void LogLines::Append(const QString& text, const QString& tag) {
  if (tag == QLatin1String("ERROR") && !bundle_.empty() && bundle_.back().tag == tag &&
      bundle_.back().text == text) {
    return;
  }
  bundle_.push_back({QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz")), tag, text});
  if (bundle_.size() >= kMaximumLines) {
    ShowBundle();
  } else if (!bundle_timer_.isActive()) {
    bundle_timer_.start();
  }
}

void LogLines::Clear() {
  bundle_timer_.stop();
  bundle_.clear();
  beginResetModel();
  lines_.clear();
  endResetModel();
  emit countChanged();
}

void LogLines::ShowBundle() {
  bundle_timer_.stop();
  if (bundle_.empty()) {
    return;
  }
  const int added = static_cast<int>(bundle_.size());
  DropOldest(count() + added - kMaximumLines);
  beginInsertRows({}, count(), count() + added - 1);
  std::move(bundle_.begin(), bundle_.end(), std::back_inserter(lines_));
  endInsertRows();
  bundle_.clear();
  emit countChanged();
}

void LogLines::DropOldest(int lines) {
  if (lines <= 0) {
    return;
  }
  beginRemoveRows({}, 0, lines - 1);
  lines_.erase(lines_.begin(), lines_.begin() + lines);
  endRemoveRows();
}
