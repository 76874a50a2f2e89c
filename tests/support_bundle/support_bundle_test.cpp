#include "support_bundle/support_bundle.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include "support/test_folder.h"
#include "support/test_keys.h"
#include "support/unzip.h"

namespace {

using test_keys::kKeys;

const BundleEntry& Named(const std::vector<BundleEntry>& entries, const std::string& name) {
  for (const BundleEntry& entry : entries) {
    if (entry.name == name) {
      return entry;
    }
  }
  throw std::runtime_error("no entry " + name);
}

// The last of the keys as a number is told.
constexpr char kKeyWithZeros[] = "b53f6";

class SupportBundleTest : public testing::Test {
 protected:
  SupportBundleTest() {
    folder_.Write("Config/auth_keys.ini", test_keys::File());
    folder_.Write("Config/site/notes.txt", std::string("mine is ") + kKeys[0].digits);
    folder_.Write("Config/varID/Orca.csv", "a table\n");
    // As the window names it: from the current folder.
    sources_.config = ConfigFolder(QDir().relativeFilePath(At("Config")).toStdString());
    sources_.device_log = At("device.log");
    sources_.names = {{"/data/people/ann"}, {"ann", "north-box.example", "north-box"}};
  }

  QString At(const std::string& name) const {
    return QString::fromStdString(folder_.path() + '/' + name);
  }

  const TestFolder folder_;
  BundleSources sources_{ConfigFolder(""), std::nullopt, "no lidar answered on NORTH-BOX"};
};

TEST_F(SupportBundleTest, HoldsWhatWasListed) {
  SettingsFile settings;
  settings.model = "Orca";
  settings.serial_number = "Orca26110042";
  sources_.settings = settings;
  sources_.screen_log = "12:00:01 [ERROR] The lidar could not be reached.\n";
  folder_.Write("device.1.log", "2026-11-21 08:00:00.000 7 info [a.cpp:1] f - long ago\n");
  folder_.Write("device.log",
                "2026-11-22 08:31:15.123 7 error [a.cpp:2] f - ret_code is -2\n"
                "2026-11-22 08:31:16.000 7 info [a.cpp:3] f - closed\n");
  const std::vector<BundleEntry> entries = ListBundle(sources_);
  ASSERT_EQ(WriteBundle(At("a.zip"), entries), "");
  const Files files = Unzip(folder_.path() + "/a.zip");
  EXPECT_EQ(files.size(), entries.size());
  for (const BundleEntry& entry : entries) {
    EXPECT_EQ(entry.left_out, "") << entry.name;
    EXPECT_EQ(files.at(entry.name).size(), entry.size()) << entry.name;
  }
  std::string error;
  const std::string& json = files.at("settings.tevron.json");
  const auto read = ParseSettings(QByteArray::fromStdString(json), &error);
  EXPECT_EQ(read.value().serial_number, "Orca26110042");
  EXPECT_EQ(files.at("last-fault.txt"), "2026-11-22 08:31:15.123: ret_code is -2");
  EXPECT_EQ(files.at("device.log").find("2026-11-21 08:00:00.000 7 info"), 0);
  EXPECT_NE(files.at("versions.txt").find(qVersion()), std::string::npos);
  EXPECT_EQ(
      files.at("tables.sha256"),
      "# auth_keys.ini: not told\n# site/notes.txt: not told\n" +
          QCryptographicHash::hash("a table\n", QCryptographicHash::Sha256).toHex().toStdString() +
          "  varID/Orca.csv\n");

  // The user's own, behind a program folder that is none.
  const QString own = qEnvironmentVariable("XDG_CONFIG_HOME") + "/Tevron/Config";
  ASSERT_TRUE(QDir().mkpath(own) && QFile::copy(At("Config/auth_keys.ini"), own + "/my keys"));
  sources_.config = ConfigFolder::OfProgram();
  sources_.names = PersonalNames::OfThisComputer();
  ASSERT_EQ(WriteBundle(At("own.zip"), ListBundle(sources_)), "");
  EXPECT_EQ(Unzip(folder_.path() + "/own.zip").at("tables.sha256"),
            "# ~/.config/Tevron/Config/my keys: not told\n");
}

TEST_F(SupportBundleTest, TellsNoKeyAndNobodysName) {
  std::string log;
  for (const auto& [name, key] : kKeys) {
    const std::string digits = key;
    // However else they are spelt, tests/fuzz/clean_text_fuzz.cpp finds them.
    log += std::string(name) + " is <" + digits + "> or <" +
           digits.substr(digits.find_first_not_of('0')) + ">\n";
  }
  log +=
      "unknown 00112233445566778899aabbccddeeff but 12 bytes 00 11 22 33 44 55 66 77 88 99 aa bb\n"
      "Ann read /data/people/ann/x.csv and /home/bob/y.csv at north-box.example (NORTH-BOX), not "
      "of Annabel\n";
  folder_.Write("device.log", log);
  sources_.screen_log = log;
  sources_.last_fault = log;
  ASSERT_EQ(WriteBundle(At("a.zip"), ListBundle(sources_)), "");
  const Files files = Unzip(folder_.path() + "/a.zip");
  SecretSearch search;
  test_keys::AddTo(&search);
  for (const auto& [name, bytes] : files) {
    EXPECT_EQ(search.FoundIn(bytes), "") << name;
    EXPECT_EQ(bytes.find(kKeyWithZeros), std::string::npos) << name;
    for (const char* secret : {"00112233445566778899aabbccddeeff", "bob", "/data", "NORTH"}) {
      EXPECT_EQ(bytes.find(secret), std::string::npos) << secret << " in " << name;
    }
  }
  EXPECT_EQ(files.count("settings.tevron.json"), 0U);
  EXPECT_NE(files.at("contents.txt").find("left out: no lidar answered on (removed)"),
            std::string::npos);
  const std::string& told = files.at("device.log");
  EXPECT_NE(told.find("12 bytes 00 11 22 33 44 55 66 77 88 99 aa bb"), std::string::npos);
  EXPECT_NE(told.find("(removed) read ~/x.csv and /home/(removed)/y.csv at (removed) ((removed)), "
                      "not of Annabel"),
            std::string::npos);

  sources_.names = PersonalNames::OfThisComputer();
  folder_.Write("device.log",
                QSysInfo::machineHostName().toStdString() + " " + QDir::homePath().toStdString());
  EXPECT_EQ(Named(ListBundle(sources_), "device.log").bytes, "(removed) ~");
}

TEST_F(SupportBundleTest, TakesNoMoreThanTheNewestOfALog) {
  const std::string line = "a line of a log that grew and grew\n";
  std::string log = "the oldest line\n";
  while (log.size() < 2 * kMaxBundledLog) {
    log += line;
  }
  folder_.Write("device.log", log + "the newest line\n");
  const std::string taken = Named(ListBundle(sources_), "device.log").bytes;
  EXPECT_LE(taken.size(), kMaxBundledLog);
  EXPECT_EQ(taken.find(line), 0U);
  EXPECT_EQ(taken.substr(taken.size() - 16), "the newest line\n");
}

TEST_F(SupportBundleTest, IsNeitherHeldUpByAPipeNorBeyondBounds) {
  ASSERT_EQ(mkfifo(At("device.log").toLocal8Bit(), 0600), 0);
  const std::vector<BundleEntry> entries = ListBundle(sources_);
  EXPECT_NE(Named(entries, "device.log").left_out, "");

  // What is too large by far is refused before anything is packed.
  folder_.Write("a.zip", "as before");
  std::vector<BundleEntry> large = entries;
  large.front() = {"large", "", "", std::string(size_t{65} * 1024 * 1024, 'x')};
  EXPECT_NE(WriteBundle(At("a.zip"), large), "");
  EXPECT_EQ(QFileInfo(At("a.zip")).size(), 9);
}

}  // namespace
