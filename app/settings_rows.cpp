#include "settings_rows.h"

#include <algorithm>
#include <utility>

namespace {

QString WordsFor(ApplyResult::Outcome outcome) {
  switch (outcome) {
    case ApplyResult::Outcome::kWritten:
      return SettingsRows::tr("written");
    case ApplyResult::Outcome::kRefused:
      return SettingsRows::tr("refused");
    case ApplyResult::Outcome::kDiffers:
      return SettingsRows::tr("lidar holds another value");
    case ApplyResult::Outcome::kSkipped:
      return SettingsRows::tr("skipped");
  }
  return {};
}

QString TextOfOutcome(const ComparedRow& row) {
  QString reason = QString::fromStdString(row.reason);
  if (!row.outcome) {
    return reason;
  }
  if (reason.isEmpty()) {
    return row.outcome == ApplyResult::Outcome::kWritten ? SettingsRows::tr("written and read back")
                                                         : WordsFor(*row.outcome);
  }
  return WordsFor(*row.outcome) + ": " + reason;
}

QString ToneOf(const ComparedRow& row) {
  if (!row.outcome || row.outcome == ApplyResult::Outcome::kSkipped) {
    return QStringLiteral("quiet");
  }
  return row.outcome == ApplyResult::Outcome::kWritten ? QStringLiteral("good")
                                                       : QStringLiteral("bad");
}

QString NameOfKind(DiffKind kind) {
  switch (kind) {
    case DiffKind::kEqual:
      return QStringLiteral("equal");
    case DiffKind::kDiffers:
      return QStringLiteral("differs");
    case DiffKind::kOnlyLeft:
      return QStringLiteral("left");
    case DiffKind::kOnlyRight:
      return QStringLiteral("right");
    case DiffKind::kUnread:
      return QStringLiteral("unread");
  }
  return {};
}

}  // namespace

int SettingsRows::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count();
}

QHash<int, QByteArray> SettingsRows::roleNames() const {
  return {{kNameRole, "name"},         {kPageRole, "page"},       {kUnitRole, "unit"},
          {kLeftRole, "left"},         {kRightRole, "right"},     {kKindRole, "kind"},
          {kWritableRole, "writable"}, {kChoiceRole, "tickable"}, {kTickedRole, "ticked"},
          {kOutcomeRole, "outcome"},   {kToneRole, "tone"}};
}

QVariant SettingsRows::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= count()) {
    return {};
  }
  const size_t place = shown_[static_cast<size_t>(index.row())];
  const ComparedRow& row = rows()[place];
  switch (role) {
    case kNameRole:
      return QString::fromStdString(row.diff.name);
    case kPageRole:
      return QString::fromStdString(row.diff.page);
    case kUnitRole:
      return QString::fromStdString(row.diff.unit);
    case kLeftRole:
      return QString::fromStdString(row.diff.left);
    case kRightRole:
      return QString::fromStdString(row.diff.right);
    case kKindRole:
      return NameOfKind(row.diff.kind);
    case kWritableRole:
      return row.diff.writable;
    case kChoiceRole:
      return MayTick(row);
    case kTickedRole:
      return ticked_.count(place) > 0;
    case kOutcomeRole:
      return TextOfOutcome(row);
    case kToneRole:
      return ToneOf(row);
    default:
      return {};
  }
}

const std::vector<ComparedRow>& SettingsRows::rows() const {
  static const std::vector<ComparedRow> kNone;
  return comparison_ == nullptr ? kNone : comparison_->rows;
}

void SettingsRows::Show(std::shared_ptr<const SettingsComparison> comparison, bool ticked) {
  comparison_ = std::move(comparison);
  filter_.clear();
  // Of a file by itself there is nothing that could differ.
  only_differing_ = comparison_ != nullptr && comparison_->right.settings != nullptr;
  only_writable_ = true;
  with_network_ = false;
  ticked_.clear();
  for (size_t i = 0; ticked && i < rows().size(); ++i) {
    if (MayTick(rows()[i])) {
      ticked_.insert(i);
    }
  }
  Filter();
}

void SettingsRows::Renew(std::shared_ptr<const SettingsComparison> comparison) {
  comparison_ = std::move(comparison);
  for (size_t i = 0; i < rows().size(); ++i) {
    if (!MayTick(rows()[i])) {
      ticked_.erase(i);
    }
  }
  if (count() > 0) {
    emit dataChanged(index(0), index(count() - 1));
  }
  emit changed();
}

std::vector<std::string> SettingsRows::Ticked() const {
  std::vector<std::string> names;
  for (size_t i = 0; i < rows().size(); ++i) {
    if (ticked_.count(i) > 0) {
      names.push_back(rows()[i].diff.name);
    }
  }
  return names;
}

bool SettingsRows::MayTick(const ComparedRow& row) const {
  return row.choice == RowChoice::kOffered || (with_network_ && row.choice == RowChoice::kOnDemand);
}

bool SettingsRows::IsInView(const ComparedRow& row) const {
  if ((only_writable_ && !row.diff.writable) ||
      (only_differing_ && row.diff.kind == DiffKind::kEqual && !row.outcome)) {
    return false;
  }
  const QString text = QString::fromStdString(row.diff.name + '\n' + row.diff.page + '\n' +
                                              row.diff.left + '\n' + row.diff.right);
  const QStringList words = filter_.split(' ', Qt::SkipEmptyParts);
  return std::all_of(words.begin(), words.end(), [&text](const QString& word) {
    return text.contains(word, Qt::CaseInsensitive);
  });
}

void SettingsRows::Filter() {
  beginResetModel();
  shown_.clear();
  for (size_t i = 0; i < rows().size(); ++i) {
    if (IsInView(rows()[i])) {
      shown_.push_back(i);
    }
  }
  endResetModel();
  emit changed();
}

void SettingsRows::SetFilter(const QString& filter) {
  if (filter != filter_) {
    filter_ = filter;
    Filter();
  }
}

void SettingsRows::SetOnlyDiffering(bool on) {
  only_differing_ = on;
  Filter();
}

void SettingsRows::SetOnlyWritable(bool on) {
  only_writable_ = on;
  Filter();
}

void SettingsRows::SetWithNetwork(bool on) {
  with_network_ = on;
  Renew(comparison_);
}

bool SettingsRows::offers_network() const {
  return std::any_of(rows().begin(), rows().end(),
                     [](const ComparedRow& row) { return row.choice == RowChoice::kOnDemand; });
}

int SettingsRows::choice_count() const {
  return static_cast<int>(std::count_if(rows().begin(), rows().end(),
                                        [this](const ComparedRow& row) { return MayTick(row); }));
}

size_t SettingsRows::CountOf(DiffKind kind) const {
  return static_cast<size_t>(std::count_if(
      rows().begin(), rows().end(),
      [kind](const ComparedRow& row) { return row.diff.writable && row.diff.kind == kind; }));
}

bool SettingsRows::equal() const {
  return std::all_of(rows().begin(), rows().end(), [](const ComparedRow& row) {
    return !row.diff.writable || row.diff.kind == DiffKind::kEqual;
  });
}

QString SettingsRows::summary() const {
  if (comparison_ == nullptr) {
    return {};
  }
  if (comparison_->right.settings == nullptr) {
    return tr("%1 values").arg(total());
  }
  QStringList parts;
  const auto add = [this, &parts](DiffKind kind, const QString& words) {
    const size_t number = CountOf(kind);
    if (number > 0) {
      parts << words.arg(number);
    }
  };
  const bool with_lidar = comparison_->with_lidar;
  add(DiffKind::kDiffers, CountOf(DiffKind::kDiffers) == 1 ? tr("%1 differs") : tr("%1 differ"));
  add(DiffKind::kOnlyLeft, with_lidar ? tr("%1 only in the file") : tr("%1 only on the left"));
  add(DiffKind::kOnlyRight, with_lidar ? tr("%1 only in the lidar") : tr("%1 only on the right"));
  add(DiffKind::kUnread, tr("%1 unread"));
  return parts.isEmpty() ? tr("All settings are the same.") : parts.join(QStringLiteral(" · "));
}

void SettingsRows::Tick(int row, bool on) {
  if (row < 0 || row >= count()) {
    return;
  }
  const size_t place = shown_[static_cast<size_t>(row)];
  if (on && MayTick(rows()[place])) {
    ticked_.insert(place);
  } else {
    ticked_.erase(place);
  }
  emit dataChanged(index(row), index(row), {kTickedRole});
  emit changed();
}

void SettingsRows::TickAll(bool on) {
  for (const size_t place : shown_) {
    if (on && MayTick(rows()[place])) {
      ticked_.insert(place);
    } else {
      ticked_.erase(place);
    }
  }
  if (count() > 0) {
    emit dataChanged(index(0), index(count() - 1), {kTickedRole});
  }
  emit changed();
}
