#include "support/test_install.h"

#include <QDir>
#include <QFile>
#include <filesystem>
#include <stdexcept>

TestInstall::TestInstall() : previous_directory_(QDir::currentPath()) {
  std::filesystem::copy(TEVRON_CONFIG_SOURCE, config().toStdString(),
                        std::filesystem::copy_options::recursive);
  QDir::setCurrent(root());
}

TestInstall::~TestInstall() { QDir::setCurrent(previous_directory_); }

void TestInstall::Write(const QString& name, const QByteArray& content) const {
  QFile file(config() + '/' + name);
  if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
    throw std::runtime_error("cannot write " + file.fileName().toStdString());
  }
}

QByteArray TestInstall::Read(const QString& name) const {
  QFile file(config() + '/' + name);
  if (!file.open(QIODevice::ReadOnly)) {
    throw std::runtime_error("cannot read " + file.fileName().toStdString());
  }
  return file.readAll();
}
