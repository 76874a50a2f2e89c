#include "log_filter.h"

LogFilter::LogFilter(QObject* parent) : QSortFilterProxyModel(parent) {}

LogLines* LogFilter::lines() const { return qobject_cast<LogLines*>(sourceModel()); }

void LogFilter::SetLines(LogLines* lines) {
  if (lines == sourceModel()) {
    return;
  }
  setSourceModel(lines);
  emit linesChanged();
}

void LogFilter::SetText(const QString& text) {
  if (text == text_) {
    return;
  }
  text_ = text;
  invalidateFilter();
  emit filterChanged();
}

void LogFilter::SetHiddenTags(const QStringList& tags) {
  if (tags == hidden_tags_) {
    return;
  }
  hidden_tags_ = tags;
  invalidateFilter();
  emit filterChanged();
}

QString LogFilter::TextOf(int first, int last) const {
  QString text;
  for (int row = first; row <= last; ++row) {
    text += index(row, 0).data(LogLines::kLineRole).toString() + QLatin1Char('\n');
  }
  return text;
}

int LogFilter::LastRowOf(const QString& tag) const {
  int row = rowCount() - 1;
  while (row >= 0 && index(row, 0).data(LogLines::kTagRole).toString() != tag) {
    --row;
  }
  return row;
}

bool LogFilter::filterAcceptsRow(int source_row, const QModelIndex& source_parent) const {
  const QModelIndex line = sourceModel()->index(source_row, 0, source_parent);
  if (hidden_tags_.contains(line.data(LogLines::kTagRole).toString())) {
    return false;
  }
  return text_.isEmpty() ||
         line.data(LogLines::kTextRole).toString().contains(text_, Qt::CaseInsensitive);
}
