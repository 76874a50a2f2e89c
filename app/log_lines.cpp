#include "log_lines.h"

#include <QTime>
#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr int kBundleTimeMs = 30;

constexpr char kErrorTag[] = "ERROR";
constexpr char kWarningTag[] = "WARNING";
constexpr char kBytesTag[] = "BYTESFLOW";

QString Repeated(int times) {
  return times == 1 ? QString() : QStringLiteral(" (x %1)").arg(times);
}

QString Shortened(const QString& text) {
  const int rest = text.size() - LogLines::kShownLength;
  return rest <= 0 ? text
                   : LogLines::tr("%1… (%2 more characters: copy or save the line)")
                         .arg(text.left(LogLines::kShownLength))
                         .arg(rest);
}

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
      return line.time + " [" + line.tag + "] " + line.text + Repeated(line.times);
    case kShownRole:
      return line.time.left(kShownTimeLength) + " [" + line.tag + "] " + Shortened(line.text) +
             Repeated(line.times);
    default:
      return {};
  }
}

QHash<int, QByteArray> LogLines::roleNames() const {
  return {{kTagRole, "tag"},
          {kTextRole, "text"},
          {kTimeRole, "time"},
          {kLineRole, "line"},
          {kShownRole, "shown"}};
}

QString LogLines::last_text() const { return Shortened(last_.text) + Repeated(last_.times); }

void LogLines::SetInView(bool in_view) {
  if (in_view == in_view_) {
    return;
  }
  in_view_ = in_view;
  unseen_warnings_ = 0;
  unseen_errors_ = 0;
  emit changed();
}

void LogLines::Append(const QString& text, const QString& tag) {
  if (!bundle_.empty() && tag != kBytesTag && bundle_.back().tag == tag &&
      bundle_.back().text == text) {
    bundle_.back().times += tag == kErrorTag ? 0 : 1;
    return;
  }
  const QString time = QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz"));
  bundle_.push_back({time, tag, text.left(kMaximumLength)});
  bundle_length_ += bundle_.back().text.size();
  if (bundle_.size() >= kMaximumLines || bundle_length_ >= kMaximumLength) {
    ShowBundle();
  } else if (!bundle_timer_.isActive()) {
    bundle_timer_.start();
  }
}

void LogLines::Clear() {
  bundle_timer_.stop();
  bundle_.clear();
  bundle_length_ = 0;
  length_ = 0;
  errors_ = 0;
  last_ = {};
  unseen_warnings_ = 0;
  unseen_errors_ = 0;
  beginResetModel();
  lines_.clear();
  endResetModel();
  emit changed();
}

bool LogLines::IsError(const Line& line) { return line.tag == kErrorTag; }

void LogLines::ShowBundle() {
  bundle_timer_.stop();
  for (const Line& line : bundle_) {
    CountUnseen(line);
  }
  JoinRepetition();
  // One long line may come behind others that already fill the log.
  auto first = bundle_.begin();
  for (; bundle_length_ > kMaximumLength; ++first) {
    bundle_length_ -= first->text.size();
  }
  const int added = static_cast<int>(std::distance(first, bundle_.end()));
  if (added > 0) {
    MakeRoom(added, bundle_length_);
    beginInsertRows({}, count(), count() + added - 1);
    errors_ += static_cast<int>(std::count_if(first, bundle_.end(), IsError));
    std::move(first, bundle_.end(), std::back_inserter(lines_));
    length_ += bundle_length_;
    endInsertRows();
  }
  bundle_.clear();
  bundle_length_ = 0;
  emit changed();
}

void LogLines::CountUnseen(const Line& line) {
  if (line.tag == last_.tag && line.text == last_.text) {
    last_.time = line.time;
    last_.times += line.times;
  } else if (line.tag != kBytesTag) {
    last_ = line;
  }
  if (!in_view_) {
    unseen_warnings_ += line.tag == kWarningTag ? line.times : 0;
    unseen_errors_ += line.tag == kErrorTag ? line.times : 0;
  }
}

void LogLines::JoinRepetition() {
  if (bundle_.empty() || lines_.empty()) {
    return;
  }
  const Line& next = bundle_.front();
  Line& line = lines_.back();
  if (next.tag == kBytesTag || next.tag != line.tag || next.text != line.text) {
    return;
  }
  line.times += next.times;
  line.time = next.time;
  bundle_length_ -= next.text.size();
  bundle_.erase(bundle_.begin());
  const QModelIndex row = index(count() - 1);
  emit dataChanged(row, row);
}

void LogLines::MakeRoom(int lines, int length) {
  int drop = std::max(count() + lines - kMaximumLines, 0);
  int kept = length_;
  const auto dropped_length = [this](int row) {
    return lines_[static_cast<size_t>(row)].text.size();
  };
  for (int row = 0; row < drop; ++row) {
    kept -= dropped_length(row);
  }
  for (; kept + length > kMaximumLength; ++drop) {
    kept -= dropped_length(drop);
  }
  if (drop == 0) {
    return;
  }
  beginRemoveRows({}, 0, drop - 1);
  errors_ -= static_cast<int>(std::count_if(lines_.begin(), lines_.begin() + drop, IsError));
  lines_.erase(lines_.begin(), lines_.begin() + drop);
  length_ = kept;
  endRemoveRows();
}
