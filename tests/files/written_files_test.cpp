// Files that are written, in places where nothing can be written, or something else is there.

#include <QSignalSpy>

#include "files/places.h"
#include "files/told.h"
#include "files/whole_file.h"
#include "lidar_settings.h"
#include "monitor/monitor_feed.h"
#include "support_bundle/support_bundle.h"
#include "text_file.h"

namespace {

namespace fs = std::filesystem;

const SmallDisk small_disk;
constexpr char kNoDisk[] = "this user may not mount a disk for himself";
constexpr char kBefore[] = "; what was there before";

void SetFolders(const std::string& folder, fs::perms permissions) {
  fs::permissions(folder, permissions);
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_directory()) {
      fs::permissions(entry.path(), permissions);
    }
  }
}

struct Trouble {
  const char* name;
  bool is_of_file;  ///< needs a file whose name is known beforehand
  bool is_good;
  /// Makes the trouble for the file at `path` in `folder`.
  void (*make)(const std::string& folder, const std::string& path);
};

std::ostream& operator<<(std::ostream& out, const Trouble& trouble) { return out << trouble.name; }

const Trouble kTroubles[] = {
    {"FullDisk", false, false,
     [](const std::string&, const std::string& path) {
       std::ofstream(path) << kBefore;
       small_disk.Fill();
     }},
    {"NoPermission", false, false,
     [](const std::string& folder, const std::string& path) {
       std::ofstream(path) << kBefore;
       fs::permissions(path, fs::perms(0444));
       SetFolders(folder, fs::perms(0555));
     }},
    {"FolderGone", false, false,
     [](const std::string& folder, const std::string&) { fs::remove_all(folder); }},
    {"FileForAFolder", false, false,
     [](const std::string& folder, const std::string&) {
       fs::remove_all(folder);
       std::ofstream(folder) << kBefore;
     }},
    {"OddName", false, true, [](const std::string&, const std::string&) {}},
    {"LinkToAFile", true, true,
     [](const std::string& folder, const std::string& path) {
       std::ofstream(folder + "/target") << kBefore;
       fs::create_symlink(folder + "/target", path);
     }},
    {"DanglingLink", true, true,
     [](const std::string& folder, const std::string& path) {
       fs::create_symlink(folder + "/target", path);
     }},
    {"LinkToItself", true, false,
     [](const std::string&, const std::string& path) { fs::create_symlink(path, path); }},
    {"LinkToAPipe", true, false,
     [](const std::string& folder, const std::string& path) {
       mkfifo((folder + "/pipe").c_str(), 0666);
       fs::create_symlink(folder + "/pipe", path);
     }},
    {"Folder", true, false,
     [](const std::string&, const std::string& path) { fs::create_directories(path + "/full"); }},
    {"Pipe", true, false,
     [](const std::string&, const std::string& path) { mkfifo(path.c_str(), 0666); }},
};

struct Kind {
  std::string name;
  std::string file;  ///< below the folder; "" where the operation chooses the name
  bool makes_its_folder;
  std::function<Told(const std::string& folder, const std::string& path)> write;
};

class WrittenFiles : public FilesFixture, public testing::WithParamInterface<Trouble> {
 protected:
  using Write = std::function<Told(const std::string& folder, const std::string& path)>;

  static QString Text(const std::string& path) { return QString::fromStdString(path); }
  static QUrl UrlOf(const std::string& path) { return QUrl::fromLocalFile(Text(path)); }

  /// tevronctl's, with the lidar that the manager is connected to.
  Write Command(const QStringList& words, bool takes_folder = false) const {
    return [this, words, takes_folder](const std::string& folder, const std::string& path) {
      QStringList all = words;
      all << Text(takes_folder ? folder : path) << "--model"
          << "Orca"
          << "--host"
          << "127.0.0.1:" + QString::number(lidar_->port());
      return RunProgram(TEVRONCTL_PROGRAM, all);
    };
  }

  /// What the manager keeps and saves.
  std::vector<Kind> ManagerKinds() {
    return {
        {"program's settings", "Documents/CorvanViewDataFiles/RecvSettings.ini", true,
         [this](const std::string& folder, const std::string&) {
           const QByteArray home = qgetenv("HOME");
           qputenv("HOME", folder.c_str());
           for (int times = 0; times < 2; ++times) {
             manager_->Stop();
             EXPECT_TRUE(Connect());
           }
           qputenv("HOME", home);
           const auto unsaved = LogLines("WARNING").filter("could not be saved").size();
           EXPECT_LE(unsaved, 1) << "told once";
           return TellOf(unsaved == 0);
         }},
        {"settings file", "a.json", false,
         [this](const std::string&, const std::string& path) {
           Settings().Save(Text(path));
           AwaitSettings();
           return TellOf(errors_.isEmpty());
         }},
        {"snapshot", "", true,
         [this](const std::string& folder, const std::string&) {
           const QByteArray data = qgetenv("XDG_DATA_HOME");
           qputenv("XDG_DATA_HOME", folder.c_str());
           std::string problem;
           Settings().TakeSnapshot(SnapshotReason::kApply,
                                   [&](const std::string& told) { problem = told; });
           AwaitSettings();
           qputenv("XDG_DATA_HOME", data);
           Told told = TellOf(problem.empty() && errors_.isEmpty());
           told.words += problem;
           return told;
         }},
    };
  }
  std::vector<Kind> TransferKinds() {
    return {
        {"log", "", false,
         [this](const std::string& folder, const std::string&) {
           return TellOf(manager_->DownloadLog(UrlOf(folder), "Event Log") == 0);
         }},
        {"operation log", "", true,
         [this](const std::string& folder, const std::string&) {
           QSignalSpy finished(manager_.get(), &TevronManager::downloadOperationLogFinished);
           manager_->DownloadOperationLog(UrlOf(folder));
           EXPECT_TRUE(WaitFor([&] { return !finished.isEmpty(); }));
           return TellOf(finished[0][0].toBool());
         }},
        {"recording", "", false,
         [this](const std::string& folder, const std::string&) {
           manager_->startMonitorRecord(UrlOf(folder));
           manager_->stopMonitorRecord();
           EXPECT_TRUE(WaitFor([this] { return !(errors_ + successes_).isEmpty(); }));
           return TellOf(errors_.isEmpty());
         }},
    };
  }
  /// What needs no lidar, and the command line.
  std::vector<Kind> OtherKinds() const {
    return {
        {"text", "a.txt", false,
         [](const std::string&, const std::string& path) {
           const QString problem = TextFile::Write(UrlOf(path), "a text");
           return Told{problem.isEmpty(), problem.toStdString()};
         }},
        {"bundle", "a.zip", false,
         [](const std::string&, const std::string& path) {
           const std::string problem =
               WriteBundle(Text(path), ListBundle({ConfigFolder("Config"), std::nullopt, ""}));
           return Told{problem.empty(), problem};
         }},
        {"firmware", "a.patch", false,
         [](const std::string&, const std::string& path) {
           return RunProgram(VIRTUAL_LIDAR_PROGRAM, {"--make-firmware", "2.8.0", Text(path)});
         }},
        {"dump", "a.json", false,
         [](const std::string&, const std::string& path) {
           ChildProcess lidar(VIRTUAL_LIDAR_PROGRAM,
                              {"--config", "./Config", "--port", "0", "--dump", Text(path)});
           const bool done = lidar.Prints("listening on ");
           lidar.Signal(SIGTERM);
           return Told{done && lidar.ExitCode() == 0, done ? "" : lidar.Output().toStdString()};
         }},
        {"tevronctl save", "a.json", false, Command({"save"})},
        {"tevronctl monitor", "a.csv", false,
         Command({"monitor", "Spin Rate", "--duration", "0", "--csv"})},
        {"tevronctl bundle", "a.zip", false, Command({"bundle"})},
        {"tevronctl download", "", false, Command({"download", "Event Log"}, true)},
        {"tevronctl log", "", false, Command({"log"}, true)},
    };
  }

  void Try(const Kind& kind) {
    const Trouble& trouble = GetParam();
    const std::string called = trouble.name;
    const TestFolder place;
    fs::permissions(place.path(), fs::perms(0755));
    const bool is_full = called == "FullDisk";
    const std::string folder = (is_full ? small_disk.path() : place.path()) +
                               (called == "OddName" ? "/new\nline\x1b" : "/folder");
    const std::string path = folder + '/' + (kind.file.empty() ? "other" : kind.file);
    fs::create_directories(fs::path(path).parent_path());
    trouble.make(folder, path);
    const auto before = Contents(place.path());
    const auto disk_before = Contents(small_disk.path());
    Begin();
    Told told;
    {
      const AsNobody nobody(called == "NoPermission");
      told = kind.write(folder, path);
    }
    if (called == "NoPermission") {
      SetFolders(folder, fs::perms(0755));
    }
    const bool is_kept =
        Contents(place.path()) == before && Contents(small_disk.path()) == disk_before;
    EXPECT_EQ(FaultOf(kind, told, is_kept, folder, path), "")
        << kind.name << " told: " << told.words;
    small_disk.Empty();
  }

 private:
  static std::string FaultOf(const Kind& kind, const Told& told, bool is_kept,
                             const std::string& folder, const std::string& path) {
    const Trouble& trouble = GetParam();
    const std::string called = trouble.name;
    const bool is_good = trouble.is_good || (called == "FolderGone" && kind.makes_its_folder);
    if (told.done != is_good) {
      return told.done ? "done" : "not done";
    }
    if (is_good && is_kept) {
      return "nothing is there";
    }
    if (!is_good && !is_kept) {
      return "the place is not as it was";
    }
    if (!is_good && told.words.find(kind.file.empty() ? folder : path) == std::string::npos) {
      return "the place is not told";
    }
    if (called == "OddName" && told.words.find("/new\nline") != std::string::npos) {
      return "the line is broken";
    }
    return trouble.is_of_file && is_good && !fs::is_symlink(path) ? "the link is gone" : "";
  }

 protected:
  void SetUp() override {
    if (std::string(GetParam().name) == "FullDisk" && !small_disk.is_there()) {
      GTEST_SKIP() << kNoDisk;
    }
    lidar_ = std::make_unique<VirtualLidarProcess>(QStringList{"--log-size", "3000"});
    manager_->setMonitorRecordDurationSec(3600);
    ASSERT_TRUE(ConnectTo(*lidar_));
  }

  std::unique_ptr<VirtualLidarProcess> lidar_;
};

TEST_P(WrittenFiles, AreWholeOrToldOf) {
  for (const auto& kinds : {ManagerKinds(), TransferKinds(), OtherKinds()}) {
    for (const Kind& kind : kinds) {
      if (!GetParam().is_of_file || !kind.file.empty()) {
        Try(kind);
      }
    }
  }
}

/// What is removed, or fills up, while it is written.
class CutFiles : public FilesFixture {};

TEST_F(CutFiles, AFolderThatGoesEndsWhatIsSavedThere) {
  const VirtualLidarProcess lidar({"--log-size", "3000", "--fault", "delay=300@0xFF#2-2"});
  ASSERT_TRUE(ConnectTo(lidar));
  const TestFolder place;
  const std::string folder = place.path() + "/folder";
  fs::create_directories(folder);
  QSignalSpy finished(manager_.get(), &TevronManager::downloadOperationLogFinished);
  const QUrl url = QUrl::fromLocalFile(QString::fromStdString(folder));
  ASSERT_EQ(manager_->DownloadOperationLog(url), 0);
  ASSERT_TRUE(WaitFor([this] { return manager_->DownloadNow().saved > 0; }));
  fs::remove_all(folder);
  ASSERT_TRUE(WaitFor([&] { return !finished.isEmpty(); }));
  EXPECT_NE(TellOf(false).words.find(folder), std::string::npos) << TellOf(false).words;
  EXPECT_EQ(TakeErrors(), QStringList("Operation log download failed."));

  fs::create_directories(folder);
  manager_->setMonitorRecordIntervalSec(1);
  manager_->startMonitorRecord(url);
  ASSERT_TRUE(WaitFor([this] { return manager_->Monitor().recording().samples > 0; }));
  fs::remove_all(folder);
  ASSERT_TRUE(WaitFor([this] { return !errors_.isEmpty(); }));
  EXPECT_TRUE(errors_[0].contains(QString::fromStdString(folder))) << qPrintable(errors_[0]);
  EXPECT_FALSE(manager_->isMonitorRecording());
  EXPECT_TRUE(fs::is_empty(place.path()));
}

TEST_F(CutFiles, ALineIsAddedWholeOrNotAtAll) {
  if (!small_disk.is_there()) {
    GTEST_SKIP() << kNoDisk;
  }
  const std::string path = small_disk.path() + "/lines";
  const std::string line = std::string(99, 'x') + '\n';
  ASSERT_TRUE(WriteWholeFile(path, "").written);
  uintmax_t size = 0;
  for (; AppendToFile(path, line).empty(); size += line.size()) {
  }
  EXPECT_GT(size, 0U);
  EXPECT_EQ(fs::file_size(path), size);
  small_disk.Empty();
  EXPECT_NE(AppendToFile(path, line), "") << "what is gone is not begun anew";
  EXPECT_TRUE(fs::is_empty(small_disk.path()));
}

TEST_F(CutFiles, WhatIsReplacedStaysWhoseItWas) {
  const TestFolder place;
  const std::string path = place.Write("file", kBefore);
  for (const mode_t mode : {0600U, 0640U, 0664U}) {
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
    std::ignore = chown(path.c_str(), 65534, 65533);  // root can, where there are such users
    struct stat before = {};
    struct stat now = {};
    stat(path.c_str(), &before);
    ASSERT_TRUE(WriteWholeFile(path, "new").written);
    stat(path.c_str(), &now);
    EXPECT_NE(now.st_ino, before.st_ino);
    EXPECT_EQ(std::tie(now.st_mode, now.st_uid, now.st_gid),
              std::tie(before.st_mode, before.st_uid, before.st_gid));
  }
}

TEST_F(CutFiles, ANameThatIsNoTextIsRefused) {
  const TestFolder place;
  const QString name = QString::fromStdString(place.path());
  for (const char* command : {TEVRONCTL_PROGRAM " bundle --config ./Config",
                              VIRTUAL_LIDAR_PROGRAM " --config ./Config --make-firmware 2.8.0"}) {
    ChildProcess shell("/bin/sh",
                       {"-c", QString(command) + " \"$(printf '%s/a\\377\\033b' \"$0\")\"", name});
    EXPECT_GT(shell.ExitCode(), 0);
    EXPECT_TRUE(shell.Output().contains(name + "/a\uFFFD")) << qPrintable(shell.Output());
    EXPECT_FALSE(shell.Output().contains('\x1b'));
    EXPECT_TRUE(fs::is_empty(place.path()));
  }
}

INSTANTIATE_TEST_SUITE_P(, WrittenFiles, testing::ValuesIn(kTroubles),
                         [](const auto& run) { return run.param.name; });

}  // namespace
