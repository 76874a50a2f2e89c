#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// One variable of a lidar as it is kept in a file.
struct SavedValue {
  std::string name;
  std::string page;          ///< "" for one that no page shows
  std::string id;            ///< "GroupID-Index"
  std::string unit;          ///< without brackets
  std::string default_text;  ///< of the table; nothing that the lidar said
  bool writable = false;     ///< a user may change it
  /// As the screens show it, in the C locale; nothing when it was not read or its type has no text.
  std::optional<std::string> text;
  std::optional<std::vector<uint8_t>> bytes;  ///< as the lidar told them; nothing when unread
  std::string unread;                         ///< why it has neither; "" when it was read
  QJsonObject other;                          ///< keys that this program does not know

  bool was_read() const { return text.has_value() || bytes.has_value(); }
};

/// The settings of one lidar at one time. Texts are "" where they are not known.
struct SettingsFile {
  std::string program;  ///< version of the program that wrote it
  std::string model;
  std::string part_number;
  std::string serial_number;
  std::string firmware;
  std::string time;                ///< ISO 8601, with the offset from UTC
  std::string table_sha256;        ///< of the model's table, in lower-case digits
  std::vector<SavedValue> values;  ///< in table order; no name twice
  QJsonObject other;               ///< keys that this program does not know

  /// Null when there is none.
  const SavedValue* Find(const std::string& name) const;
};

/// The ending of these files' names.
inline constexpr char kSettingsSuffix[] = ".tevron.json";

/// The newest format that is read, and the one that is written.
inline constexpr int kSettingsFormat = 1;

/// Larger files are refused before they are read.
inline constexpr int64_t kMaxSettingsSize = 16 * 1024 * 1024;

/// The file's bytes: JSON in UTF-8 as docs/settings-files.md has it, the keys in the order of the
/// alphabet, each on a line, so that equal settings are equal files. Key material is left out.
QByteArray SettingsJson(const SettingsFile& file);

/// Reads such bytes. Nothing, with a sentence in *error that names the place, for anything but a
/// whole file of this format or an older one. Of key material only the name is taken.
std::optional<SettingsFile> ParseSettings(const QByteArray& json, std::string* error);

/// The same for a file; *error names it, too.
std::optional<SettingsFile> LoadSettings(const QString& path, std::string* error);

/// Writes it aside and gives it its name when it is whole. Returns "", or why it could not be
/// written; what the name stood for is then still there.
std::string SaveSettings(const QString& path, const SettingsFile& file);
