#pragma once

#include <functional>
#include <string>

#include "lidar_settings.h"
#include "manager/manager_fixture.h"
#include "support/child_process.h"

/// How an operation went, and everything that it said of it.
struct Told {
  bool done = false;
  std::string words;
};

/// One of the programs, run to its end.
inline Told RunProgram(const char* program, const QStringList& arguments) {
  ChildProcess process(program, QStringList{"--config", "./Config"} + arguments);
  const bool done = process.ExitCode() == 0;
  return {done, process.Output().toStdString()};
}

/// A manager, and what it says.
class FilesFixture : public ManagerFixture {
 protected:
  // The tables are read by other users, too.
  FilesFixture() { std::filesystem::permissions(install_.path(), std::filesystem::perms(0755)); }

  void Begin() {
    log_.clear();
    errors_.clear();
    successes_.clear();
  }
  Told TellOf(bool done) const {
    const QStringList words = errors_ + successes_ + LogLines("ERROR") + LogLines("WARNING");
    return {done, words.join("\n").toStdString()};
  }
  LidarSettings& Settings() { return manager_->Settings(); }
  void AwaitSettings() {
    EXPECT_TRUE(WaitFor([this] { return Settings().Now().task == SettingsTask::kNone; }));
  }
};
