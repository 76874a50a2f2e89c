#include "output.h"

#include <QDateTime>
#include <QJsonDocument>

void Output::Line(const std::string& text) {
  if (!json_) {
    out_ << text << std::endl;
  }
}

void Output::Object(const QJsonObject& object) {
  if (json_) {
    out_ << QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString() << std::endl;
  }
}

void Output::Bytes(const QByteArray& bytes) {
  out_.write(bytes.constData(), bytes.size());
  out_.flush();
}

QJsonValue TextOrNull(const std::string& text) {
  return text.empty() ? QJsonValue() : QJsonValue(QString::fromStdString(text));
}

QString TimeNowIso() {
  const QDateTime now = QDateTime::currentDateTime();
  return now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODateWithMs);
}
