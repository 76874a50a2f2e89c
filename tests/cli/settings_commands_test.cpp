// Settings from the command line, and what is written about it.

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "cli/commands_fixture.h"
#include "support/child_process.h"

namespace {

using SettingsCommands = Commands;

QString ReadAll(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  return QString::fromUtf8(file.readAll());
}

QJsonObject ResultOf(const Tevronctl& ended, const QString& name) {
  const QJsonArray results = ended.Json()["results"].toArray();
  for (const QJsonValue& result : results) {
    if (result["name"] == name) {
      return result.toObject();
    }
  }
  return {};
}

TEST_F(SettingsCommands, SetChecksWritesAndReadsBack) {
  const VirtualLidarProcess lidar({"--fault", "return-code=4@0x35"});
  const std::pair<QStringList, int> cases[] = {
      {{"Spin Rate=1200", "return mode=Dual"}, 0},
      {{"Spin Rate=77"}, 2},
      {{"Spin Rate=300", "--dry-run"}, 0},
      {{"SN=1"}, 2},
      {{"Nobody=1"}, 2},
      {{"Spin Rate"}, 2},
      {{"Motor Start Delay=300"}, 1},
      {{"Noise Filter=1", "Noise Filter=2"}, 2},
  };
  for (const auto& [arguments, code] : cases) {
    const Ran ended(code, QStringList{"set"} + arguments, At(lidar));
    EXPECT_EQ(lidar.Held("Spin Rate"), "1200") << Words(ended);
  }
  EXPECT_EQ(lidar.Held("Return Mode"), "3");
  const Ran refused(1, {"set", "Motor Start Delay=300"}, At(lidar));
  EXPECT_EQ(refused.Error()["lidar_code"], 4) << Words(refused);
  EXPECT_EQ(ValueOf(refused, "Motor Start Delay")["outcome"], "refused");
  const Ran told(0, {"set", "Azimuth Trim=4.5"}, At(lidar));
  EXPECT_EQ(ValueOf(told, "Azimuth Trim")["text"], "4.50");
  EXPECT_EQ(ValueOf(told, "Azimuth Trim")["hex"], "00 12");
  EXPECT_EQ(ValueOf(told, "Azimuth Trim")["state"], "read");
}

TEST_F(SettingsCommands, SavedSettingsAreComparedAndApplied) {
  const VirtualLidarProcess one({"--set", "Spin Rate=1200", "--set", "Noise Filter=5"});
  const VirtualLidarProcess other;
  const Ran save(0, {"save", "one.tevron.json"}, At(one));
  EXPECT_EQ(save.Json()["unread"], 0);
  const Said piped(0, {"save", "-"}, At(one));
  EXPECT_EQ(QJsonDocument::fromJson(piped.out()).object()["model"], "Orca");

  const Ran differs(1, {"diff", "one.tevron.json"}, At(other));
  EXPECT_EQ(differs.Json()["equal"], false);
  EXPECT_EQ(differs.Json()["differences"].toArray().size(), 2) << Words(differs);
  EXPECT_EQ(differs.Json()["differences"].toArray()[0].toObject()["left"], "1200");

  const Ran dry(0, {"apply", "one.tevron.json", "--dry-run"}, At(other));
  EXPECT_EQ(other.Held("Spin Rate"), "600");
  const Ran only(0, {"apply", "one.tevron.json", "--only", "noise"}, At(other));
  EXPECT_EQ(other.Held("Noise Filter"), "5");
  EXPECT_EQ(other.Held("Spin Rate"), "600");
  const Ran apply(0, {"apply", "one.tevron.json"}, At(other));
  EXPECT_EQ(ResultOf(apply, "Spin Rate")["outcome"], "written");
  EXPECT_EQ(ResultOf(apply, "Spin Rate")["holds"], "1200");
  EXPECT_EQ(ResultOf(apply, "IP Address")["outcome"], "skipped");
  const Said same(0, {"diff", "one.tevron.json"}, At(other));
  const Said files(0, {"diff", "one.tevron.json", "one.tevron.json"});

  const VirtualLidarProcess osprey({"--model", "Osprey"});
  const Said foreign(2, {"apply", "one.tevron.json"}, At(osprey, "Osprey"));
  std::ofstream("half.tevron.json") << "{\"format\": 1,";
  const Said half(2, {"apply", "half.tevron.json"}, At(other));
}

TEST_F(SettingsCommands, AnApplyThatEndsInTheMiddleSaysWhatWasDone) {
  const VirtualLidarProcess one(
      {"--set", "Spin Rate=1200", "--set", "Clock Synchronisation=0", "--set", "IMU Rate=400"});
  const Ran save(0, {"save", "one.tevron.json"}, At(one));

  const VirtualLidarProcess silent({"--fault", "drop@0x31"});
  const Ran lost(4, {"apply", "one.tevron.json"}, At(silent));
  EXPECT_EQ(ResultOf(lost, "Spin Rate")["outcome"], "written");
  EXPECT_EQ(ResultOf(lost, "IMU Rate")["outcome"], "skipped");

  const VirtualLidarProcess slow({"--fault", "delay=400@0x12"});
  Tevronctl interrupted(QStringList{"--json", "--verbose", "apply", "one.tevron.json"} + At(slow));
  ASSERT_TRUE(interrupted.Says("47 74 12")) << Words(interrupted);
  interrupted.Signal(SIGINT);
  EXPECT_EQ(interrupted.Code(), 130) << Words(interrupted);
  EXPECT_EQ(ResultOf(interrupted, "Spin Rate")["outcome"], "written");
  EXPECT_EQ(ResultOf(interrupted, "IMU Rate")["outcome"], "skipped");
  EXPECT_EQ(slow.Held("Clock Synchronisation"), "1");
}

TEST_F(SettingsCommands, TheScriptOfTheFactoryLinePassesFiveLidars) {
  const QString page = ReadAll(TEVRON_SOURCE "/docs/tevronctl.md");
  const QString script =
      QRegularExpression("```sh\n(.*?)```", QRegularExpression::DotMatchesEverythingOption)
          .match(page)
          .captured(1);
  EXPECT_LE(script.count('\n'), 20);
  std::ofstream("line.sh") << script.toStdString();
  std::vector<std::unique_ptr<VirtualLidarProcess>> lidars;
  QStringList addresses;
  for (int i = 0; i < 5; ++i) {
    lidars.push_back(std::make_unique<VirtualLidarProcess>(
        QStringList{"--set", "SN=Orca" + QString::number(i), "--set",
                    i == 0 ? "Spin Rate=1200" : "Noise Filter=1"}));
    addresses << "127.0.0.1:" + QString::number(lidars.back()->port());
  }
  const Said save(0, {"save", "reference.tevron.json"}, At(*lidars.front()));
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  const QString bin = QFileInfo(TEVRONCTL_PROGRAM).path();
  environment.insert("PATH", bin + ':' + environment.value("PATH"));
  ChildProcess line;
  line.SetEnvironment(environment);
  line.Start("sh", QStringList{"line.sh", "Orca", "reference.tevron.json"} + addresses);
  EXPECT_EQ(line.ExitCode(), 0) << line.Output().toStdString();
  EXPECT_EQ(line.Output().count(": passed"), 5) << line.Output().toStdString();
  for (const auto& lidar : lidars) {
    EXPECT_EQ(lidar->Held("Spin Rate"), "1200");
  }
}

TEST_F(SettingsCommands, ABundleHoldsWhatWasListedWithOrWithoutALidar) {
  const VirtualLidarProcess lidar;
  const Said dry(0, {"bundle", "help.zip", "--dry-run"});
  EXPECT_TRUE(dry.out().contains("left out: no lidar was named")) << Words(dry);
  EXPECT_FALSE(QFile::exists("help.zip"));
  const Ran full(0, {"bundle", "help.zip"}, At(lidar));
  EXPECT_TRUE(full.err().contains("settings.tevron.json: ")) << Words(full);
  EXPECT_TRUE(full.Json()["entries"].toArray()[0].toObject()["left_out"].isNull()) << Words(full);
  EXPECT_GT(QFileInfo("help.zip").size(), 1000);
  const Said silent(0, {"bundle", "no.zip", "--model", "Orca", "--host", "127.0.0.1:1"});
  EXPECT_TRUE(silent.err().contains("the settings are left out")) << Words(silent);
  const Said unwritable(2, {"bundle", "none/help.zip"});
}

// What the program tells of itself is made from its command line; the page is written by hand.
TEST_F(SettingsCommands, EveryCommandAndOptionIsOnThePages) {
  const Said help(0, {"--help-all"});
  const QString page = ReadAll(TEVRON_SOURCE "/docs/tevronctl.md");
  const QString manual = ReadAll(TEVRON_SHARE "/man/man1/tevronctl.1").remove('\\');
  const QString all = QString::fromUtf8(help.out());
  QRegularExpression option("--[a-z][a-z-]+");
  for (auto match = option.globalMatch(all); match.hasNext();) {
    const QString name = match.next().captured();
    EXPECT_TRUE(manual.contains(name)) << name.toStdString();
  }
  for (auto match = option.globalMatch(page); match.hasNext();) {
    const QString name = match.next().captured();
    EXPECT_TRUE(all.contains(name)) << "on the page, unknown: " << name.toStdString();
  }
  const char* const script =
      ". \"$0\"; for w in '' get; do COMP_WORDS=(tevronctl $w --); COMP_CWORD=$((${#COMP_WORDS[@]} "
      "- 1)); _tevronctl; echo \"${COMPREPLY[@]}\"; done";
  ChildProcess bash("bash", {"-c", script, TEVRON_SHARE "/bash-completion/completions/tevronctl"});
  EXPECT_EQ(bash.ExitCode(), 0) << bash.Output().toStdString();
  const QStringList offered = bash.Output().split('\n');
  EXPECT_TRUE(offered[0].contains("--json")) << bash.Output().toStdString();
  EXPECT_TRUE(offered[1].contains("--host-port")) << bash.Output().toStdString();
}

}  // namespace
