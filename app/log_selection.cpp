#include "log_selection.h"

void LogSelection::SetFilter(LogFilter* filter) {
  if (filter_ != nullptr) {
    filter_->disconnect(this);
  }
  filter_ = filter;
  if (filter_ != nullptr) {
    connect(filter_, &LogFilter::rowsRemoved, this, &LogSelection::Look);
    connect(filter_, &LogFilter::rowsInserted, this, &LogSelection::Look);
    connect(filter_, &LogFilter::modelReset, this, &LogSelection::Look);
  }
  Clear();
}

void LogSelection::Select(int row, bool extend) {
  if (filter_ == nullptr || filter_->rowCount() == 0) {
    return;
  }
  current_ = filter_->index(qBound(0, row, filter_->rowCount() - 1), 0);
  if (!extend || !anchor_.isValid()) {
    anchor_ = current_;
  }
  emit changed();
}

void LogSelection::SelectAll() {
  Select(0, false);
  if (filter_ != nullptr) {
    Select(filter_->rowCount() - 1, true);
  }
}

void LogSelection::Clear() {
  anchor_ = QPersistentModelIndex();
  current_ = QPersistentModelIndex();
  emit changed();
}

QString LogSelection::Text() const {
  return filter_ == nullptr || first() < 0 ? QString() : filter_->TextOf(first(), last());
}

void LogSelection::Look() {
  if (current_.isValid() && anchor_.isValid()) {
    emit changed();
  } else if (current_ != anchor_) {
    Clear();
  }
}
