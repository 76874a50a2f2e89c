// Files that are read, in places where there is no file to be read.

#include "files/places.h"
#include "files/told.h"
#include "lidar_settings.h"
#include "monitor/monitor_file.h"
#include "table_check/table_check.h"
#include "upgrade/upgrade_file.h"

namespace {

namespace fs = std::filesystem;

constexpr uintmax_t kHuge = uintmax_t{1} << 30;

struct Trouble {
  const char* name;
  bool may_be_absent;  ///< what needs no file goes on without one
  bool is_good;
  /// Makes the trouble of the good file at `path`; `folder` is another place.
  void (*make)(const std::string& path, const std::string& folder);
};

std::ostream& operator<<(std::ostream& out, const Trouble& trouble) { return out << trouble.name; }

const Trouble kTroubles[] = {
    {"LinkToAFile", false, true,
     [](const std::string& path, const std::string& folder) {
       fs::rename(path, folder + "/other");
       fs::create_symlink(folder + "/other", path);
     }},
    {"Missing", true, false, [](const std::string& path, const std::string&) { fs::remove(path); }},
    {"DanglingLink", true, false,
     [](const std::string& path, const std::string& folder) {
       fs::remove(path);
       fs::create_symlink(folder + "/none", path);
     }},
    {"LinkToItself", false, false,
     [](const std::string& path, const std::string&) {
       fs::remove(path);
       fs::create_symlink(path, path);
     }},
    {"NoPermission", false, false,
     [](const std::string& path, const std::string&) { fs::permissions(path, fs::perms::none); }},
    {"Folder", false, false,
     [](const std::string& path, const std::string&) {
       fs::remove(path);
       fs::create_directory(path);
     }},
    // A link to a device would be the same, but as root a fault could replace the machine's.
    {"LinkToAPipe", false, false,
     [](const std::string& path, const std::string& folder) {
       fs::remove(path);
       mkfifo((folder + "/pipe").c_str(), 0666);
       fs::create_symlink(folder + "/pipe", path);
     }},
    {"Huge", false, false,
     [](const std::string& path, const std::string&) { fs::resize_file(path, kHuge); }},
};

struct Kind {
  std::string name;
  std::string file;     ///< below the folder
  std::string content;  ///< of a good one; "": it lies in the shipped tables
  bool is_needed;
  std::function<Told(const std::string& folder, const std::string& path)> read;
};

class ReadFiles : public FilesFixture, public testing::WithParamInterface<Trouble> {
 protected:
  std::vector<Kind> Kinds() {
    const std::string settings = R"({"format": 1, "model": "Orca", "values": []})";
    return {
        {"program's settings", "Documents/CorvanViewDataFiles/RecvSettings.ini",
         "[General]\ncmx_port=9400\n", false,
         [this](const std::string& folder, const std::string&) {
           const QByteArray home = qgetenv("HOME");
           qputenv("HOME", folder.c_str());
           Recreate();
           WaitFor([this] { return !LogLines("WARNING").isEmpty(); }, 20);
           qputenv("HOME", home);
           return TellOf(manager_->port() == "9400");
         }},
        {"settings file", "a.tevron.json", settings, true,
         [this](const std::string&, const std::string& path) {
           Settings().Open(QString::fromStdString(path));
           AwaitSettings();
           return TellOf(!Settings().Now().failed);
         }},
        {"tevronctl diff", "a.tevron.json", settings, true,
         [](const std::string&, const std::string& path) {
           const QString file = QString::fromStdString(path);
           return RunProgram(TEVRONCTL_PROGRAM, {"diff", file, file});
         }},
        {"recording", "a.csv", "timestamp,Speed\n", true,
         [](const std::string&, const std::string& path) {
           try {
             ReadMonitorFile(path);
             return Told{true, ""};
           } catch (const std::runtime_error& error) {
             return Told{false, error.what()};
           }
         }},
        {"firmware", "a.patch", "image", true,
         [](const std::string&, const std::string& path) {
           const QUrl url = QUrl::fromLocalFile(QString::fromStdString(path));
           const UpgradeFileFacts facts = InspectUpgradeFile(url, false);
           const UpgradeFile file = ReadUpgradeFile(url);
           return Told{facts.problem.empty() && file.problem.empty(),
                       facts.name + ": " + facts.problem + file.problem};
         }},
    };
  }
  /// The tables, each in trouble among the others.
  static std::vector<Kind> TableKinds() {
    std::vector<Kind> kinds;
    for (const char* file : {"varID/Orca.csv", "varID/Orca/Monitor_B2.csv", "feature_config.csv",
                             "auth_config.csv", "auth_keys.ini"}) {
      kinds.push_back({file, file, "", false, [](const std::string& folder, const std::string&) {
                         const TableReport report = CheckTables(ConfigFolder(folder), "");
                         std::string words;
                         for (const TableFault& fault : report.findings) {
                           words += fault.file + ": " + fault.text + '\n';
                         }
                         return Told{report.findings.empty(), words};
                       }});
    }
    return kinds;
  }

  void Try(const Kind& kind, const Trouble& trouble) {
    const TestFolder folder;
    const TestFolder other;
    for (const TestFolder* each : {&folder, &other}) {
      fs::permissions(each->path(), fs::perms(0755));
    }
    const std::string path = folder.path() + '/' + kind.file;
    if (kind.content.empty()) {
      fs::copy("Config", folder.path(), fs::copy_options::recursive);
    } else {
      folder.Write(kind.file, kind.content);
    }
    trouble.make(path, other.path());
    Begin();
    Told told;
    {
      const AsNobody nobody(trouble.name == std::string("NoPermission"));
      told = kind.read(folder.path(), path);
    }
    if (trouble.may_be_absent && !kind.is_needed) {
      return;
    }
    EXPECT_EQ(told.done, trouble.is_good) << kind.name << " told: " << told.words;
    EXPECT_TRUE(told.done || told.words.find(fs::path(path).filename()) != std::string::npos)
        << kind.name << " told: " << told.words;
  }
};

TEST_P(ReadFiles, AreReadOrToldOf) {
  for (const auto& kinds : {Kinds(), TableKinds()}) {
    for (const Kind& kind : kinds) {
      Try(kind, GetParam());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, ReadFiles, testing::ValuesIn(kTroubles),
                         [](const auto& run) { return run.param.name; });

}  // namespace
