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

QString LogFilter::ShownText() const {
  QString text;
  for (int row = 0; row < rowCount(); ++row) {
    text += LineAt(row) + QLatin1Char('\n');
  }
  return text;
}

QString LogFilter::LineAt(int row) const {
  return index(row, 0).data(LogLines::kLineRole).toString();
}

bool LogFilter::filterAcceptsRow(int source_row, const QModelIndex& source_parent) const {
  const QModelIndex line = sourceModel()->index(source_row, 0, source_parent);
  if (hidden_tags_.contains(line.data(LogLines::kTagRole).toString())) {
    return false;
  }
  return text_.isEmpty() ||
         line.data(LogLines::kTextRole).toString().contains(text_, Qt::CaseInsensitive);
}
