#include "settings_files/settings_file.h"

#include <gtest/gtest.h>

#include <QFile>

#include "support/test_folder.h"
#include "variables/var_info.h"

namespace {

// Whoever changes this changes the format.
const char* const kFile = R"({
    "factory": "north",
    "firmware": "2026-10-18 v2.7.1.0",
    "format": 1,
    "model": "Orca",
    "pn": "Orca-64-A2",
    "program": "1.0",
    "sn": "Orca26110042",
    "table_sha256": "00ff",
    "time": "2026-11-22T08:30:00+01:00",
    "values": [
        {
            "bytes": "0258",
            "default": "600",
            "id": "4-1",
            "name": "Spin Rate",
            "note": "as ordered",
            "page": "Scan",
            "text": "600",
            "unit": "rpm",
            "writable": true
        },
        {
            "default": "",
            "id": "2-4",
            "name": "Internal Temperature",
            "page": "Device",
            "unit": "°C",
            "unread": "lidar return code 5",
            "writable": false
        }
    ]
}
)";

TEST(SettingsFileTest, IsTheSameAfterItWasReadAndWrittenAgain) {
  std::string error;
  const std::optional<SettingsFile> file = ParseSettings(kFile, &error);
  ASSERT_TRUE(file) << error;
  EXPECT_EQ(file->Find("Spin Rate")->bytes, (std::vector<uint8_t>{0x02, 0x58}));
  EXPECT_EQ(file->Find("Internal Temperature")->unread, "lidar return code 5");
  EXPECT_EQ(SettingsJson(*file).toStdString(), kFile);

  const TestFolder folder;
  const QString path = QString::fromStdString(folder.path() + "/a.tevron.json");
  EXPECT_EQ(SaveSettings(path, *file), "");
  EXPECT_EQ(SettingsJson(LoadSettings(path, &error).value()).toStdString(), kFile);
  EXPECT_NE(SaveSettings(path + "/b", *file), "");
}

TEST(SettingsFileTest, TheExamplesOfThePageAreFiles) {
  QFile page(SETTINGS_PAGE);
  ASSERT_TRUE(page.open(QIODevice::ReadOnly));
  const QStringList parts = QString::fromUtf8(page.readAll()).split("```json\n");
  ASSERT_EQ(parts.size(), 3);
  for (int i = 1; i < parts.size(); ++i) {
    const QByteArray example = parts[i].section("```", 0, 0).toUtf8();
    std::string error;
    const std::optional<SettingsFile> file = ParseSettings(example, &error);
    ASSERT_TRUE(file) << error;
    EXPECT_EQ(i == 1, SettingsJson(*file) == example) << "the first is one that Tevron wrote";
  }
}

TEST(SettingsFileTest, KeyMaterialIsNeitherReadNorWritten) {
  std::string error;
  const std::optional<SettingsFile> file = ParseSettings(
      R"({"format": 1, "model": "Orca", "values": [{"name": "Shared Secret Key", "bytes": "C0DE"}]})",
      &error);
  ASSERT_TRUE(file) << error;
  EXPECT_FALSE(file->values.at(0).was_read());
  EXPECT_FALSE(SettingsJson(*file).contains(kSharedSecretKey));
}

/// A file with these values, or with these keys in their place.
QByteArray Values(const std::string& values) {
  return QByteArray::fromStdString(R"({"format": 1, "model": "Orca", "values": [)" + values + "]}");
}

TEST(SettingsFileTest, EveryFaultIsNamedWithItsPlace) {
  const QByteArray whole(kFile);
  const struct {
    QByteArray json;
    const char* error;
  } cases[] = {
      {"", "it ends in line 1, in the middle; is it cut short? "},
      {whole.left(500), "it ends in line 20, in the middle; is it cut short? "},
      {"{\n  \"format\" 1}", "line 2, column 12: "},
      {"[]", "it holds no object: this is no settings file"},
      {"{}", "\"format\" is no whole number from 1: this is no settings file"},
      {R"({"format": "1"})", "\"format\" is no whole number from 1: this is no settings file"},
      {R"({"format": 7, "values": 0})",
       "format 7 is newer than 1, the newest that this version reads; use a newer one"},
      {R"({"format": 1, "values": []})", "it has no \"model\""},
      {R"({"format": 1, "model": "Orca"})", "\"values\" is no list"},
      {R"({"format": 1, "model": ["Orca"]})", "\"model\" is no text"},
      {R"({"format": 1, "model": "Orca", "time": "noon", "values": []})",
       "\"time\" is no time like 2026-11-22T08:30:00+01:00"},
      {Values("7"), "values[0] is no object"},
      {Values(R"({"text": "1"})"), "values[0]: it has no \"name\""},
      {Values(R"({"name": "A", "text": 1})"), "values[0] (A): \"text\" is no text"},
      {Values(R"({"name": "A", "text": "1", "writable": 1})"),
       "values[0] (A): \"writable\" is neither true nor false"},
      {Values(R"({"name": "A", "bytes": "0G"})"),
       "values[0] (A): \"bytes\" is no row of pairs of hexadecimal digits"},
      {Values(R"({"name": "A", "bytes": "012"})"),
       "values[0] (A): \"bytes\" is no row of pairs of hexadecimal digits"},
      {Values(R"({"name": "A"})"),
       "values[0] (A): it has neither \"text\" nor \"bytes\", and no \"unread\" says why"},
      {Values(R"({"name": "A", "text": "1", "unread": "silent"})"),
       "values[0] (A): it has a value and is \"unread\""},
      {Values(
           R"({"name": "A", "text": "1"}, {"name": "B", "text": "1"}, {"name": "A", "text": "1"})"),
       "values[2] (A): the name stands in values[0] already"},
      {QByteArray(100 << 20, ' '), "it is larger than 16 MiB, which no settings file is"},
  };
  for (const auto& each : cases) {
    std::string error;
    EXPECT_FALSE(ParseSettings(each.json, &error)) << each.error;
    EXPECT_EQ(error.substr(0, std::string(each.error).size()), each.error);
  }
}

}  // namespace
