#include "support/test_install.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <stdexcept>

TestInstall::TestInstall() : previous_directory_(QDir::currentPath()) {
  const QDir source(QStringLiteral(TEVRON_CONFIG_SOURCE));
  QDirIterator files(source.path(), {"*.csv", "*.ini"}, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    const QString file = files.next();
    const QString copy = config() + '/' + source.relativeFilePath(file);
    QDir().mkpath(QFileInfo(copy).path());
    if (!QFile::copy(file, copy)) throw std::runtime_error("cannot copy " + file.toStdString());
  }
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
