#include "connection/path_part.h"

#include <QCryptographicHash>

namespace {

/// Longer encoded texts are cut, since a name of a file has an end.
constexpr int kLongestPart = 100;
/// Begins what stands for the rest of a cut text, and stands for an empty one. Not in encoded ones.
constexpr char kCut[] = "~";

}  // namespace

QString PathPartOf(const std::string& text) {
  const QByteArray bytes = QByteArray::fromStdString(text);
  const QByteArray encoded = bytes.toPercentEncoding({}, "._~");
  if (encoded.isEmpty()) {
    return kCut;
  }
  if (encoded.size() <= kLongestPart) {
    return QString::fromLatin1(encoded);
  }
  const QByteArray hash = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
  return QString::fromLatin1(encoded.left(kLongestPart) + kCut + hash.left(16));
}

std::string TextOfPathPart(const QString& part) {
  return QByteArray::fromPercentEncoding(part.section(kCut, 0, 0).toLatin1()).toStdString();
}
