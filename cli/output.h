#pragma once

#include <QJsonObject>
#include <QString>
#include <ostream>
#include <string>

/// A text for one line of a terminal: what a lidar, a table or a file tells may hold characters
/// that command the terminal, or break the line. Each control character but the tab becomes its
/// escape of JSON ("\u001b"), so that JSON stays what it was.
std::string Printable(const std::string& text);

/// Standard output, which carries results and nothing else: lines of text, or objects of JSON, each
/// on a line of its own. What is not wanted is not written, so that a command says both.
class Output {
 public:
  Output(std::ostream& out, bool json) : out_(out), json_(json) {}

  bool json() const { return json_; }

  /// One line; what would break it is escaped.
  void Line(const std::string& text);
  void Object(const QJsonObject& object);
  /// Bytes as they are, whatever is wanted: a file that goes to standard output.
  void Bytes(const QByteArray& bytes);

  /// Whether everything written has been taken.
  bool good() const { return out_.good(); }

 private:
  std::ostream& out_;
  const bool json_;
};

/// A text for JSON; null for an empty one.
QJsonValue TextOrNull(const std::string& text);

/// The time now, as every result tells times: ISO 8601 with the offset from UTC.
QString TimeNowIso();
