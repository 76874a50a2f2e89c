#include "console_words.h"

#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <cstdint>
#include <vector>

#include "Wire/cmx_header.h"
#include "Wire/return_code.h"

using namespace kavel::lidar;

namespace {

// A number that is taken: 32 bits with a sign at most, of which the low byte counts.
bool IsHexNumber(const QString& text) {
  static const QRegularExpression number(QStringLiteral("^(0[xX])?0*[0-7]?[0-9a-fA-F]{1,7}$"));
  return number.match(text).hasMatch();
}

std::vector<uint8_t> BytesOf(const QString& text) {
  std::vector<uint8_t> bytes;
  for (const QString& pair : text.split(' ', Qt::SkipEmptyParts)) {
    bytes.push_back(static_cast<uint8_t>(pair.toUInt(nullptr, 16)));
  }
  return bytes;
}

QString HexNumber(uint32_t number, int digits) {
  return QStringLiteral("%1").arg(number, digits, 16, QLatin1Char('0'));
}

QString CodeText(uint8_t code) { return "0x" + HexNumber(code, 2).toUpper(); }

QString MeaningOf(uint8_t return_code) {
  const char* const meaning = ReturnCodeMeaning(return_code);
  return *meaning == '\0' ? ConsoleWords::tr("a code of this device") : ConsoleWords::tr(meaning);
}

uint32_t PayloadLength(const std::vector<uint8_t>& header) {
  uint32_t length = 0;
  for (size_t i = kCmxHeader1.payload_length_at; i < kCmxHeader1.size; ++i) {
    length = length << 8 | header[i];
  }
  return length;
}

}  // namespace

QString ConsoleWords::CommandProblem(const QString& text) {
  return IsHexNumber(text.trimmed()) ? QString() : tr("A hexadecimal number like 0x07");
}

QString ConsoleWords::PayloadProblem(const QString& text) {
  const QStringList numbers = text.split(' ', Qt::SkipEmptyParts);
  return std::all_of(numbers.begin(), numbers.end(), IsHexNumber)
             ? QString()
             : tr("Hexadecimal numbers, a blank between two");
}

QString ConsoleWords::CodeText(const QString& command) {
  const QString text = command.trimmed();
  return IsHexNumber(text) ? ::CodeText(static_cast<uint8_t>(text.toUInt(nullptr, 16))) : text;
}

QVariantMap ConsoleWords::Verdict(const QString& command, const QString& header) {
  const auto say = [](const QString& text, const char* tag) {
    return QVariantMap{{"text", text}, {"tag", QString::fromLatin1(tag)}};
  };
  const QString code = CodeText(command);
  const std::vector<uint8_t> bytes = BytesOf(header);
  if (bytes.size() < kCmxHeader1.size) {
    return say(tr("%1: no answer").arg(code), "ERROR");
  }
  const uint8_t refusal = bytes[kCmxHeader1.return_code_at];
  const QString answered = ::CodeText(bytes[kCmxHeader1.command_at]);
  if (answered != code) {
    return say(tr("%1: the answer belongs to %2").arg(code, answered), "WARNING");
  }
  if (refusal != kAccepted) {
    return say(tr("%1 refused: %2 %3").arg(code).arg(refusal).arg(MeaningOf(refusal)), "WARNING");
  }
  const uint32_t length = PayloadLength(bytes);
  return say(length == 1 ? tr("%1 answered, 1 byte").arg(code)
                         : tr("%1 answered, %2 bytes").arg(code).arg(length),
             "SUCCESS");
}

QString ConsoleWords::RefusalIn(const QString& message) {
  static const QRegularExpression named(QStringLiteral("return code:? ([1-9]\\d?)(?! ?\\(|\\d)"));
  const QRegularExpressionMatch match = named.match(message);
  if (!match.hasMatch()) {
    return {};
  }
  const auto code = static_cast<uint8_t>(match.captured(1).toUInt());
  return code > kBadImage ? QString() : tr("Code %1: %2.").arg(code).arg(MeaningOf(code));
}

QString ConsoleWords::Dump(const QString& payload, int bytes_per_line) {
  const std::vector<uint8_t> bytes = BytesOf(payload);
  const auto width = static_cast<size_t>(std::max(bytes_per_line, 1));
  QStringList lines;
  for (size_t begin = 0; begin < bytes.size(); begin += width) {
    const size_t end = std::min(begin + width, bytes.size());
    QString hex;
    QString characters;
    for (size_t i = begin; i < end; ++i) {
      hex += HexNumber(bytes[i], 2) + ' ';
      characters += bytes[i] >= ' ' && bytes[i] <= '~' ? QChar(bytes[i]) : QChar('.');
    }
    lines += HexNumber(static_cast<uint32_t>(begin), 4) + "  " +
             hex.leftJustified(3 * static_cast<int>(width)) + ' ' + characters;
  }
  return lines.join('\n');
}
