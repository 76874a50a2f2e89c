#include "output.h"

#include <QDateTime>
#include <QJsonDocument>

namespace {

bool IsControl(unsigned char byte) { return (byte < 0x20 && byte != '\t') || byte == 0x7F; }

}  // namespace

std::string Printable(const std::string& text) {
  std::string printable;
  for (size_t i = 0; i < text.size(); ++i) {
    auto byte = static_cast<unsigned char>(text[i]);
    const bool starts_c1 = byte == 0xC2 && i + 1 < text.size() &&
                           static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
                           static_cast<unsigned char>(text[i + 1]) < 0xA0;
    if (!starts_c1 && !IsControl(byte)) {
      printable += text[i];
      continue;
    }
    if (starts_c1) {
      byte = static_cast<unsigned char>(text[++i]);
    }
    constexpr char kDigits[] = "0123456789abcdef";
    printable += std::string("\\u00") + kDigits[byte >> 4] + kDigits[byte & 0x0F];
  }
  return printable;
}

void Output::Line(const std::string& text) {
  if (!json_) {
    out_ << Printable(text) << std::endl;
  }
}

void Output::Object(const QJsonObject& object) {
  if (json_) {
    out_ << Printable(QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString())
         << std::endl;
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
