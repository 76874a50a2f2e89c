#include "text_file.h"

#include "files/whole_file.h"

QString TextFile::Write(const QUrl& url, const QString& text) {
  const std::string path = url.toLocalFile().toStdString();
  const FileOutcome outcome = WriteWholeFile(path, text.toStdString());
  return outcome.written ? QString()
                         : tr("%1 could not be written: %2.")
                               .arg(QString::fromStdString(PathText(path)),
                                    QString::fromStdString(outcome.reason));
}
