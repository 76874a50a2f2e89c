#include "connection/plain_ini.h"

#include <QByteArray>
#include <filesystem>
#include <optional>

#include "files/whole_file.h"

namespace {

/// Files beyond this size are not read.
constexpr uint64_t kLargestFile = uint64_t{64} * 1024;

constexpr char kNoSettings[] = "it holds no settings";
constexpr char kTooMuch[] = "it would be larger than 64 KiB";
constexpr char kTopSection[] = "General";
constexpr int kEscapeDigits = 4;
constexpr char kHexDigits[] = "0123456789abcdefABCDEF";

/// The character that stands at *at behind a backslash, with the digits of "x1F4".
QChar TakeEscape(const QString& text, int* at) {
  const QChar c = text[(*at)++];
  if (c == 'x') {
    const int begin = *at;
    while (*at < text.size() && *at - begin < kEscapeDigits &&
           QString(kHexDigits).contains(text[*at])) {
      ++*at;
    }
    return QChar(text.mid(begin, *at - begin).toUShort(nullptr, 16));
  }
  return c == 'n' ? QChar('\n') : c == 'r' ? QChar('\r') : c == 't' ? QChar('\t') : c;
}

/// The one text that a value is, or nothing.
std::optional<QString> TextOf(const QString& value) {
  QString text;
  bool is_quoted = false;
  for (int at = 0; at < value.size();) {
    const QChar c = value[at++];
    if (c == '"') {
      is_quoted = !is_quoted;
    } else if (c == '\\' && at < value.size()) {
      text += TakeEscape(value, &at);
    } else if (c == ',' && !is_quoted) {
      return std::nullopt;
    } else {
      text += c;
    }
  }
  if (!text.startsWith('@')) {
    return text;
  }
  return text.startsWith("@@") ? std::optional(text.mid(1)) : std::nullopt;
}

QString ValueOf(const QString& text) {
  QString value = text.startsWith('@') ? "@" : "";
  for (const QChar c : text) {
    if (c == '"' || c == '\\') {
      value += '\\';
    }
    value += c.unicode() >= ' ' && c.unicode() <= '~'
                 ? QString(c)
                 : QString("\\x%1").arg(c.unicode(), kEscapeDigits, 16, QChar('0'));
  }
  return '"' + value + '"';
}

QString KeyOf(const QByteArray& escaped) {
  return QString::fromUtf8(QByteArray::fromPercentEncoding(escaped.trimmed())).replace('\\', '/');
}

/// Whether they are settings at all.
bool Parse(const QByteArray& content, PlainIni* texts) {
  QString section;
  for (const QByteArray& whole_line : content.split('\n')) {
    const QByteArray line = whole_line.trimmed();
    if (line.isEmpty() || line.startsWith(';')) {
      continue;
    }
    const int equals = line.indexOf('=');
    if (line.startsWith('[')) {
      if (!line.endsWith(']')) {
        return false;
      }
      const QString name = KeyOf(line.mid(1, line.size() - 2));
      section = name.compare(kTopSection, Qt::CaseInsensitive) == 0 ? "" : name + '/';
    } else if (equals < 0) {
      return false;
    } else if (const auto text = TextOf(QString::fromLatin1(line.mid(equals + 1).trimmed()))) {
      texts->insert(section + KeyOf(line.left(equals)), *text);
    }
  }
  return true;
}

std::string ContentOf(const PlainIni& texts) {
  QMap<QString, QByteArray> sections;
  for (auto entry = texts.begin(); entry != texts.end(); ++entry) {
    const bool is_top = !entry.key().contains('/');
    const QString name = entry.key().section('/', -1);
    sections[is_top ? kTopSection : entry.key().section('/', 0, -2)] +=
        name.toUtf8().toPercentEncoding() + '=' + ValueOf(entry.value()).toLatin1() + '\n';
  }
  QByteArray content;
  for (auto section = sections.begin(); section != sections.end(); ++section) {
    content += '[' + section.key().toUtf8().toPercentEncoding("/") + "]\n" + section.value() + '\n';
  }
  return content.toStdString();
}

}  // namespace

std::string ReadPlainIni(const std::string& path, PlainIni* texts) {
  texts->clear();
  std::error_code error;
  if (std::filesystem::status(path, error).type() == std::filesystem::file_type::not_found) {
    return "";
  }
  QByteArray content;
  std::string reason = ReadWholeFile(path, kLargestFile, &content);
  if (reason.empty() && !Parse(content, texts)) {
    texts->clear();
    reason = kNoSettings;
  }
  return reason;
}

std::string WritePlainIni(const std::string& path, const PlainIni& texts) {
  const std::string content = ContentOf(texts);
  if (content.size() > kLargestFile) {
    return kTooMuch;  // nobody could read it again
  }
  std::string reason = MakeFolder(std::filesystem::path(path).parent_path().string());
  return reason.empty() ? WriteWholeFile(path, content).reason : reason;
}
