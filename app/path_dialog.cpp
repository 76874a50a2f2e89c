#include "path_dialog.h"

#include <QApplication>

PathDialog::PathDialog(QObject* parent) : QObject(parent) {}

PathDialog::~PathDialog() { delete dialog_; }

void PathDialog::open() {
  if (dialog_ != nullptr) {
    return;
  }
  dialog_ = new QFileDialog(QApplication::activeWindow(), title_);
  dialog_->setAttribute(Qt::WA_DeleteOnClose);
  dialog_->setDirectoryUrl(folder_);
  if (name_filters_.isEmpty()) {
    dialog_->setFileMode(QFileDialog::Directory);
    dialog_->setOption(QFileDialog::ShowDirsOnly);
  } else {
    dialog_->setFileMode(QFileDialog::ExistingFile);
    dialog_->setNameFilters(name_filters_);
  }
  connect(dialog_, &QDialog::accepted, this, [this] { Take(dialog_->selectedUrls().value(0)); });
  dialog_->open();
}

void PathDialog::Take(const QUrl& url) {
  folder_ = name_filters_.isEmpty() ? url : url.adjusted(QUrl::RemoveFilename);
  emit folderChanged();
  emit chosen(url);
}
