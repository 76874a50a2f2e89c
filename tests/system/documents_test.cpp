// What the pages of docs/ promise to people who have nothing else, tried on the real programs.

#include <QDirIterator>
#include <QRegularExpression>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "auth/auth_algorithm.h"
#include "auth/auth_keys.h"
#include "manager/manager_fixture.h"
#include "support/bytes.h"
#include "support/child_process.h"
#include "support/test_install.h"
#include "support/virtual_lidar_process.h"

namespace {

constexpr char kWireFormats[] = TEVRON_SOURCE "/docs/wire-formats.md";
constexpr char kModels[] = TEVRON_SOURCE "/docs/models.md";
constexpr char kVirtualLidar[] = TEVRON_SOURCE "/docs/virtual-lidar.md";

std::string ReadAll(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// What the first match of `pattern` in `text` holds in its group; empty without one.
std::string Group(const std::string& text, const std::string& pattern) {
  std::smatch match;
  return std::regex_search(text, match, std::regex(pattern)) ? match[1].str() : std::string();
}

/// What the first group of `pattern` holds in each of its matches, once.
std::set<std::string> Groups(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  std::set<std::string> found;
  for (std::sregex_iterator i(text.begin(), text.end(), expression); i != std::sregex_iterator();
       ++i) {
    found.insert((*i)[1]);
  }
  return found;
}

/// Runs the client that was written from the page; "" when it is content.
std::string SecondReader(const QStringList& arguments) {
  ChildProcess reader("python3",
                      QStringList{TEVRON_SOURCE "/tests/system/second_reader.py"} + arguments);
  const int code = reader.ExitCode();
  return code == 0 ? "" : std::to_string(code) + ": " + reader.Output().toStdString();
}

TEST(WireFormats, FramesOfTheExamplesAreSound) {
  EXPECT_EQ(SecondReader({"examples", kWireFormats}), "");
}

TEST(WireFormats, ResponsesOfTheExamplesAreRight) {
  const TestFolder folder;
  const std::string page = ReadAll(kWireFormats);
  const std::string key_file = Group(page, "```ini\n([^`]*)```");
  EXPECT_NE(ReadAll(TEVRON_CONFIG_SOURCE "/auth_keys.ini").find(Group(key_file, "(aes128[^`]*)")),
            std::string::npos)
      << "the keys that ship";
  const AuthKeys keys = LoadAuthKeys(folder.Write("keys.ini", key_file));
  const Bytes challenge = FromHex(Group(page, "response to the challenge ([0-9a-f ]*) \\|"));
  for (const int id : {1, 2, 3, 4}) {
    const std::string row = "\\| " + std::to_string(id) + " \\| [^|]* \\| ([0-9a-f ]*) \\|\n";
    EXPECT_TRUE(VerifyAuthResponse(id, keys, challenge, FromHex(Group(page, row)))) << id;
  }
}

// Both kinds of lines, each algorithm, variables of a table and maintenance commands.
TEST(WireFormats, AreEnoughToWriteAnotherClient) {
  struct Case {
    const char* model;
    const char* commands;  ///< what is read and written: two commands, and where in their payload
    int offset;
    int algorithm;
  };
  const TestInstall install;
  const std::string shipped = ReadAll("Config/auth_config.csv");
  for (const auto& [model, commands, offset, algorithm] :
       {Case{"Osprey", "54 55", 2, 3}, Case{"Osprey", "54 55", 2, 1}, Case{"Osprey", "54 55", 2, 2},
        Case{"Kiva-CMX", "42 43", 4, 4}}) {
    const std::string row = std::string(model) + ",1,";
    install.Write("Config/auth_config.csv", std::regex_replace(shipped, std::regex(row + "[1-4]"),
                                                               row + std::to_string(algorithm)));
    const VirtualLidarProcess lidar({"--model", model, "--serial"});
    const QStringList rest = QStringList{QString::number(algorithm), "Config/auth_keys.ini"} +
                             QString(commands).split(' ') + QStringList{QString::number(offset)};
    const QString address = "127.0.0.1:" + QString::number(lidar.port());
    EXPECT_EQ(SecondReader(QStringList{address} + rest + QStringList{"fff6"}), "")
        << model << algorithm;
    EXPECT_EQ(SecondReader(QStringList{lidar.SerialPort()} + rest + QStringList{"fff4"}), "")
        << model << algorithm;
  }
}

TEST(VirtualLidarPage, NamesEveryOptionAndItsExamplesRun) {
  const TestInstall install;
  const std::string page = ReadAll(kVirtualLidar);
  ChildProcess help(TEVRON_VIRTUAL_LIDAR, {"--help"});
  EXPECT_EQ(help.ExitCode(), 0);
  std::set<std::string> options = Groups(help.Output().toStdString(), "\n  (?:-h,)?(--[a-z-]+)");
  options.erase("--help");
  EXPECT_EQ(Groups(page, "\n\\| `(--[a-z-]+)"), options);

  const std::set<std::string> examples = Groups(page, "\n(?:\\$ )?virtual_lidar( [^\n]+)");
  EXPECT_GT(examples.size(), 8U);
  for (const std::string& arguments : examples) {
    SCOPED_TRACE(arguments);
    const bool has_port = arguments.find("--port") != std::string::npos;
    ChildProcess lidar("sh", {"-c", ("exec '" TEVRON_VIRTUAL_LIDAR "' --config ./Config" +
                                     std::string(has_port ? "" : " --port 0") + arguments)
                                        .c_str()});
    EXPECT_TRUE(lidar.Prints("listening on ") || lidar.ExitCode() == 0)
        << lidar.Output().toStdString();
  }
}

// Who looks a message up has its words. Where they are another every time, the page has "…".
TEST(Guide, WordsEachMessageAsTheProgramDoes) {
  QString program;
  for (const char* room : {"app", "TevronCore", "libkavel"}) {
    QDirIterator files(QString(TEVRON_SOURCE "/") + room, {"*.cpp", "*.h", "*.qml"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
      program += QString::fromStdString(ReadAll(files.next().toStdString()));
    }
  }
  program.remove(QRegularExpression("\"\\s*\""));  // a text of several lines
  const QString guide = QString::fromStdString(ReadAll(TEVRON_SOURCE "/docs/guide.md"));
  const QRegularExpression between("…|: |[(),]|\\d+|\\bN\\b");
  int count = 0;
  for (const QString& table : guide.split("\n| message |").mid(1)) {
    for (const QString& row : table.section("\n\n", 0, 0).split('\n').mid(2)) {
      const QString message = row.section(" | ", 0, 0).mid(2);
      for (const QString& part : message.split(between, Qt::SkipEmptyParts)) {
        EXPECT_TRUE(message.startsWith('*') || program.contains(part.trimmed()))
            << message.toStdString() << ": " << part.toStdString();
      }
      ++count;
    }
  }
  EXPECT_GT(count, 25);
}

class Models : public ManagerFixture {
 protected:
  /// Writes the files that the page shows to where it says that they belong.
  Models() {
    const std::string page = ReadAll(kModels);
    const std::regex file("`(Config/[^`]*)`\n\n```csv\n([^`]*)```");
    for (std::sregex_iterator i(page.begin(), page.end(), file); i != std::sregex_iterator(); ++i) {
      install_.Write((*i)[1], (*i)[2]);
      ++files_;
    }
  }

  int files_ = 0;
};

TEST_F(Models, ThePageMakesAModelThatWorks) {
  ASSERT_EQ(files_, 4);
  ChildProcess checker(TEVRON_VIRTUAL_LIDAR, {"--config", "./Config", "--check-tables", "Heron"});
  EXPECT_EQ(checker.ExitCode(), 0);
  EXPECT_TRUE(checker.Output().contains("1 model checked: no fault, no warning"))
      << checker.Output().toStdString();

  const VirtualLidarProcess lidar({"--model", "Heron", "--seed", "0"});
  manager_->InitConfigFileParser("Heron");
  EXPECT_EQ(manager_->level1List(), (QVariantList{"Lidar", "Health", "Upgrade"}));
  ASSERT_TRUE(ConnectTo(lidar));
  OpenPage("Lidar");
  EXPECT_EQ(Text("Start Azimuth"), "90.00");
  Edit("Start Azimuth", "45");
  Save("Lidar");
  EXPECT_EQ(lidar.Held("Start Azimuth", "hex"), "00 5a");
  EXPECT_TRUE(WaitFor([&] { return lidar.Output().contains("0xE0 (16 bytes)"); })) << "protected";

  manager_->selectMonitorHwVersion("R1");
  OpenPage("Health");
  EXPECT_EQ(Text("Motor Current"), "0.42");
  EXPECT_EQ(manager_->DownloadLog(QUrl::fromLocalFile(install_.path().c_str()), "Event Log"), 0);
  EXPECT_TRUE(TakeErrors().isEmpty());
}

}  // namespace
