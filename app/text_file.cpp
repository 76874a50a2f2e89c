#include "text_file.h"

#include <QDir>
#include <cstdint>
#include <vector>

#include "downloads/whole_file.h"

QString TextFile::Write(const QUrl& url, const QString& text) {
  const QByteArray bytes = text.toUtf8();
  const FileOutcome outcome =
      WriteWholeFile(url.toLocalFile(), std::vector<uint8_t>(bytes.begin(), bytes.end()));
  return outcome.written ? QString()
                         : tr("%1 could not be written: %2.")
                               .arg(QDir::toNativeSeparators(url.toLocalFile()),
                                    QString::fromStdString(outcome.reason));
}
