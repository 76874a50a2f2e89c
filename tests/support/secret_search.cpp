#include "support/secret_search.h"

#include <QByteArray>
#include <QStringList>
#include <algorithm>
#include <stdexcept>

namespace {

constexpr int kWordSize = 4;
// What stands between two bytes: nothing of a word, "0x" or "\\x".
constexpr char kBetween[] = "(?:[^0-9a-z]*(?:0?x)?)";

QByteArray WithWordsReversed(QByteArray bytes) {
  for (int at = 0; at + kWordSize <= bytes.size(); at += kWordSize) {
    std::reverse(bytes.begin() + at, bytes.begin() + at + kWordSize);
  }
  return bytes;
}

QString Hexadecimal(const QByteArray& bytes) {
  return QString(bytes.toHex(' ')).split(' ').join(kBetween);
}

QString Decimal(const QByteArray& bytes) {
  QStringList numbers;
  for (const char byte : bytes) {
    numbers << QString::number(static_cast<uint8_t>(byte));
  }
  return "(?<![0-9])" + numbers.join("[^0-9]+") + "(?![0-9])";
}

/// What base64 is certain to have where the bytes begin `before` bytes into a group of three, of
/// either alphabet and however it is broken into lines.
QString Base64(const QByteArray& bytes, int before) {
  const QByteArray whole =
      (QByteArray(before, '\0') + bytes).toBase64(QByteArray::OmitTrailingEquals);
  const int first = (8 * before + 5) / 6;
  const QByteArray certain = whole.mid(first, 8 * (before + bytes.size()) / 6 - first);
  QString pattern = "(?-i)";
  for (const char letter : certain) {
    pattern += letter == '+' ? "[+-]" : letter == '/' ? "[/_]" : QString(letter);
    pattern += "\\s*";
  }
  return pattern;
}

}  // namespace

void SecretSearch::Add(const std::string& name, const Bytes& secret) {
  const QByteArray bytes(reinterpret_cast<const char*>(secret.data()),
                         static_cast<int>(secret.size()));
  if (bytes.size() < kWordSize) {
    throw std::invalid_argument(name + " is too short to be searched for");
  }
  const auto add = [&](const char* how, const QString& pattern) {
    needles_.push_back(
        {name + how, QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption |
                                                     QRegularExpression::DontCaptureOption)});
  };
  QByteArray reversed = bytes;
  std::reverse(reversed.begin(), reversed.end());
  for (const QByteArray& order : {bytes, WithWordsReversed(bytes), reversed}) {
    add(" as bytes", "(?-i)\\x" + order.toHex(' ').replace(" ", "\\x"));
    add(" in hexadecimal", Hexadecimal(order));
    add(" in decimal", Decimal(order));
    for (int before = 0; before < (bytes.size() > kWordSize ? 3 : 1); ++before) {
      add(" in base64", Base64(order, before));
    }
    if (bytes.size() == kWordSize) {
      const uint number = order.toHex().toUInt(nullptr, 16);
      add(" as a number", "(?<![0-9])" + QString::number(number) + "(?![0-9])");
    }
  }
}

std::string SecretSearch::FoundIn(const std::string& text) const {
  const QString letters = QString::fromLatin1(text.data(), static_cast<int>(text.size()));
  std::string found;
  for (const Needle& needle : needles_) {
    if (needle.pattern.match(letters).hasMatch()) {
      found += (found.empty() ? "" : "; ") + needle.name;
    }
  }
  return found;
}
