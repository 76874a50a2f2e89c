#include "downloads/whole_file.h"

#include <QDateTime>
#include <QLocale>
#include <QSaveFile>

FileOutcome WriteWholeFile(const QString& path, const std::vector<uint8_t>& bytes) {
  FileOutcome outcome;
  QSaveFile file(path);
  outcome.opened = file.open(QIODevice::WriteOnly);
  if (!outcome.opened) {
    outcome.reason = file.errorString().toStdString();
    return outcome;
  }
  // A disk that fills up takes part of the bytes without an error, and a commit would then give the
  // final name to half a file.
  const auto size = static_cast<qint64>(bytes.size());
  const qint64 taken = file.write(reinterpret_cast<const char*>(bytes.data()), size);
  if (taken == size && file.flush() && file.size() == size && file.commit()) {
    outcome.written = true;
    return outcome;
  }
  outcome.reason = file.error() != QFileDevice::NoError
                       ? file.errorString().toStdString()
                       : "only " + std::to_string(taken) + " of " + std::to_string(size) +
                             " bytes could be written, the disk may be full";
  file.cancelWriting();
  return outcome;
}

QString LocalFolderOf(const QUrl& url) {
  QString folder = url.isLocalFile()        ? url.toLocalFile()
                   : url.scheme().isEmpty() ? url.path(QUrl::FullyDecoded)
                                            : QString();
  if (folder.isEmpty()) {
    return folder;
  }
  if (url.hasQuery()) {
    folder += '?' + url.query(QUrl::FullyDecoded);
  }
  if (url.hasFragment()) {
    folder += '#' + url.fragment(QUrl::FullyDecoded);
  }
  return folder;
}

QString FileNamePart(const QString& name) {
  QString part = name;
  for (QChar& character : part) {
    if (character < ' ' || QStringLiteral("/\\:*?\"<>|").contains(character)) {
      character = '_';
    }
  }
  return part;
}

QString TimeNow(const char* format) {
  return QLocale::c().toString(QDateTime::currentDateTime(), QString::fromLatin1(format));
}
