#include "downloads/file_names.h"

#include <QDateTime>
#include <QLocale>

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
