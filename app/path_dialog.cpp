#include "path_dialog.h"

#include <QApplication>
#include <QFileInfo>

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
    dialog_->setFileMode(save_name_.isEmpty() ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog_->setNameFilters(name_filters_);
  }
  if (!save_name_.isEmpty()) {
    dialog_->setAcceptMode(QFileDialog::AcceptSave);
    dialog_->setDefaultSuffix(QFileInfo(save_name_).completeSuffix());
    dialog_->selectFile(save_name_);
  }
  connect(dialog_, &QDialog::accepted, this, [this] { Take(dialog_->selectedUrls().value(0)); });
  dialog_->open();
}

void PathDialog::Take(const QUrl& url) {
  folder_ = name_filters_.isEmpty() ? url : url.adjusted(QUrl::RemoveFilename);
  emit folderChanged();
  emit chosen(url);
}
