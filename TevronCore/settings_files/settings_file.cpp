#include "settings_files/settings_file.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <unordered_map>

#include "files/whole_file.h"
#include "variables/hex_cell.h"
#include "variables/var_info.h"

namespace {

/// What is wrong with a file, a sentence with the place.
using Fault = std::runtime_error;

constexpr char kFormat[] = "format";
constexpr char kValues[] = "values";
constexpr char kName[] = "name";
constexpr char kText[] = "text";
constexpr char kBytes[] = "bytes";
constexpr char kUnread[] = "unread";
constexpr char kWritable[] = "writable";
constexpr char kModel[] = "model";
constexpr char kTime[] = "time";

template <typename Owner>
struct TextKey {
  const char* key;
  std::string Owner::*text;
};

// Their order is that of the file only as far as QJsonObject sorts its keys.
constexpr TextKey<SettingsFile> kFileTexts[] = {
    {"program", &SettingsFile::program},          {kModel, &SettingsFile::model},
    {"pn", &SettingsFile::part_number},           {"sn", &SettingsFile::serial_number},
    {"firmware", &SettingsFile::firmware},        {kTime, &SettingsFile::time},
    {"table_sha256", &SettingsFile::table_sha256}};
constexpr TextKey<SavedValue> kValueTexts[] = {{kName, &SavedValue::name},
                                               {"page", &SavedValue::page},
                                               {"id", &SavedValue::id},
                                               {"unit", &SavedValue::unit},
                                               {"default", &SavedValue::default_text},
                                               {kUnread, &SavedValue::unread}};

QString Shown(const std::string& text) { return QString::fromStdString(text); }

QString HexOf(const std::vector<uint8_t>& bytes) {
  return QString::fromLatin1(
      QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()))
          .toHex());
}

QJsonObject JsonOf(const SavedValue& value) {
  QJsonObject object = value.other;
  for (const auto& [key, text] : kValueTexts) {
    if (key != kUnread) {
      object[QLatin1String(key)] = Shown(value.*text);
    }
  }
  object[kWritable] = value.writable;
  if (value.text) {
    object[kText] = Shown(*value.text);
  }
  if (value.bytes) {
    object[kBytes] = HexOf(*value.bytes);
  }
  if (!value.was_read()) {
    object[kUnread] = Shown(value.unread);
  }
  return object;
}

/// Takes known keys out of an object and leaves the others. `place` begins what it says of them.
class KeyReader {
 public:
  KeyReader(QJsonObject object, std::string place)
      : object_(std::move(object)), place_(std::move(place)) {}

  [[noreturn]] void Fail(const std::string& what) const { throw Fault(place_ + what); }

  std::optional<std::string> Text(const char* key) {
    const QJsonValue value = object_.take(QLatin1String(key));
    if (value.isUndefined()) {
      return std::nullopt;
    }
    if (!value.isString()) {
      Fail("\"" + std::string(key) + "\" is no text");
    }
    return value.toString().toStdString();
  }

  bool Flag(const char* key) {
    const QJsonValue value = object_.take(QLatin1String(key));
    if (!value.isUndefined() && !value.isBool()) {
      Fail("\"" + std::string(key) + "\" is neither true nor false");
    }
    return value.toBool();
  }

  QJsonValue Take(const char* key) { return object_.take(QLatin1String(key)); }
  const QJsonObject& rest() const { return object_; }
  void SetPlace(std::string place) { place_ = std::move(place); }

 private:
  QJsonObject object_;
  std::string place_;
};

std::optional<std::vector<uint8_t>> TakeBytes(KeyReader* keys) {
  const std::optional<std::string> text = keys->Text(kBytes);
  if (!text) {
    return std::nullopt;
  }
  std::string digits = *text;
  digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
  std::optional<std::vector<uint8_t>> bytes = HexPairs(digits);
  if (!bytes || digits.size() % 2 != 0) {
    keys->Fail("\"bytes\" is no row of pairs of hexadecimal digits");
  }
  return bytes;
}

std::string Named(const std::string& place, const std::string& name) {
  return place + " (" + name + "): ";
}

SavedValue ValueOf(const QJsonValue& json, const std::string& place) {
  if (!json.isObject()) {
    throw Fault(place + " is no object");
  }
  KeyReader keys(json.toObject(), place + ": ");
  SavedValue value;
  value.name = keys.Text(kName).value_or("");
  if (value.name.empty()) {
    keys.Fail("it has no \"name\"");
  }
  keys.SetPlace(Named(place, value.name));
  for (const auto& [key, text] : kValueTexts) {
    if (key != kName) {
      value.*text = keys.Text(key).value_or("");
    }
  }
  value.writable = keys.Flag(kWritable);
  value.text = keys.Text(kText);
  value.bytes = TakeBytes(&keys);
  if (value.was_read() && !value.unread.empty()) {
    keys.Fail("it has a value and is \"unread\"");
  }
  if (!value.was_read() && value.unread.empty()) {
    keys.Fail("it has neither \"text\" nor \"bytes\", and no \"unread\" says why");
  }
  if (value.name == kSharedSecretKey) {
    value.text.reset();
    value.bytes.reset();
    value.unread = "key material";
  }
  value.other = keys.rest();
  return value;
}

void CheckFormat(const QJsonValue& json) {
  const double format = json.toDouble();
  if (!json.isDouble() || format < 1 || format != std::floor(format)) {
    throw Fault("\"format\" is no whole number from 1: this is no settings file");
  }
  if (format > kSettingsFormat) {
    throw Fault("format " + QString::number(format, 'f', 0).toStdString() + " is newer than " +
                std::to_string(kSettingsFormat) +
                ", the newest that this version reads; use a newer one");
  }
}

std::vector<SavedValue> ValuesOf(const QJsonValue& json) {
  if (!json.isArray()) {
    throw Fault("\"values\" is no list");
  }
  std::vector<SavedValue> values;
  std::unordered_map<std::string, int> place_of_name;
  const QJsonArray list = json.toArray();
  for (int i = 0; i < list.size(); ++i) {
    const std::string place = "values[" + std::to_string(i) + "]";
    values.push_back(ValueOf(list[i], place));
    const std::string& name = values.back().name;
    const auto [earlier, is_new] = place_of_name.emplace(name, i);
    if (!is_new) {
      throw Fault(Named(place, name) + "the name stands in values[" +
                  std::to_string(earlier->second) + "] already");
    }
  }
  return values;
}

/// Where the reader of the JSON stopped, which is behind what it could not read; as an editor
/// counts.
std::string PlaceIn(const QByteArray& json, int offset) {
  const QByteArray before = json.left(std::max(offset, 0));
  if (before.trimmed().size() >= json.trimmed().size()) {
    return "it ends in line " + std::to_string(before.count('\n') + 1) +
           ", in the middle; is it cut short? ";
  }
  return "line " + std::to_string(before.count('\n') + 1) + ", column " +
         std::to_string(before.size() - before.lastIndexOf('\n') - 1) + ": ";
}

SettingsFile FileOf(const QByteArray& json) {
  if (json.size() > kMaxSettingsSize) {
    throw Fault("it is larger than 16 MiB, which no settings file is");
  }
  QJsonParseError fault;
  const QJsonDocument document = QJsonDocument::fromJson(json, &fault);
  if (fault.error != QJsonParseError::NoError) {
    throw Fault(PlaceIn(json, fault.offset) + fault.errorString().toStdString());
  }
  if (!document.isObject()) {
    throw Fault("it holds no object: this is no settings file");
  }
  KeyReader keys(document.object(), "");
  CheckFormat(keys.Take(kFormat));
  SettingsFile file;
  for (const auto& [key, text] : kFileTexts) {
    file.*text = keys.Text(key).value_or("");
  }
  if (file.model.empty()) {
    throw Fault("it has no \"model\"");
  }
  if (!file.time.empty() && !QDateTime::fromString(Shown(file.time), Qt::ISODate).isValid()) {
    throw Fault("\"time\" is no time like 2026-11-22T08:30:00+01:00");
  }
  file.values = ValuesOf(keys.Take(kValues));
  file.other = keys.rest();
  return file;
}

}  // namespace

const SavedValue* SettingsFile::Find(const std::string& name) const {
  const auto found = std::find_if(values.begin(), values.end(),
                                  [&](const SavedValue& value) { return value.name == name; });
  return found == values.end() ? nullptr : &*found;
}

QByteArray SettingsJson(const SettingsFile& file) {
  QJsonObject object = file.other;
  object[kFormat] = kSettingsFormat;
  for (const auto& [key, text] : kFileTexts) {
    object[QLatin1String(key)] = Shown(file.*text);
  }
  QJsonArray values;
  for (const SavedValue& value : file.values) {
    if (value.name != kSharedSecretKey) {
      values.append(JsonOf(value));
    }
  }
  object[kValues] = values;
  return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

std::optional<SettingsFile> ParseSettings(const QByteArray& json, std::string* error) {
  try {
    return FileOf(json);
  } catch (const Fault& fault) {
    *error = fault.what();
    return std::nullopt;
  }
}

std::optional<SettingsFile> LoadSettings(const QString& path, std::string* error) {
  QByteArray json;
  *error = ReadWholeFile(path.toStdString(), kMaxSettingsSize, &json);
  std::optional<SettingsFile> settings;
  if (error->empty()) {
    settings = ParseSettings(json, error);
  }
  if (!settings) {
    *error = PathText(path.toStdString()) + ": " + *error;
  }
  return settings;
}

std::string SaveSettings(const QString& path, const SettingsFile& file) {
  const FileOutcome outcome = WriteWholeFile(path.toStdString(), SettingsJson(file).toStdString());
  return outcome.written ? "" : PathText(path.toStdString()) + ": " + outcome.reason;
}
