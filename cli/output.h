#pragma once

#include <QJsonObject>
#include <QString>
#include <ostream>
#include <string>

/// Standard output, which carries results and nothing else: lines of text, or objects of JSON, each
/// on a line of its own. What is not wanted is not written, so that a command says both.
class Output {
 public:
  Output(std::ostream& out, bool json) : out_(out), json_(json) {}

  bool json() const { return json_; }

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
