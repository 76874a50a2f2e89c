#include <QFileInfo>
#include <algorithm>

#include "commands/commands.h"
#include "firmware_upgrade.h"
#include "lidar_settings.h"
#include "upgrade/upgrade_file.h"
#include "upgrade/upgrade_work.h"

namespace {

void LookAt(const QUrl& file, const LidarModel& model) {
  const bool is_package = TakesPackages(model.connect_type, model.family);
  const UpgradeFileFacts facts = InspectUpgradeFile(file, is_package);
  if (!facts.problem.empty()) {
    throw Failure(ExitCode::kUsage, facts.name + ": " + facts.problem);
  }
}

void ShowProgress(const UpgradeSnapshot& now, ConsoleReport& report) {
  for (const UpgradeStep& step : now.steps) {
    if (step.state == UpgradeStepState::kRunning) {
      report.Progress(step.name, static_cast<uint64_t>(now.progress_kib),
                      static_cast<uint64_t>(now.total_kib));
    }
  }
}

QJsonObject ResultOf(const UpgradeSnapshot& now) {
  return {{"before", TextOrNull(now.version_before)},
          {"after", TextOrNull(now.version_after)},
          {"outcome", TextOrNull(now.outcome)}};
}

/// Whether the lidar was waited for, though it was not told to restart: the link was lost.
bool WasLost(const UpgradeSnapshot& ended) {
  const auto was = [&ended](const char* name, UpgradeStepState state) {
    return std::any_of(ended.steps.begin(), ended.steps.end(), [&](const UpgradeStep& step) {
      return step.name == name && step.state == state;
    });
  };
  return !was(kRestartStep, UpgradeStepState::kDone) &&
         !was(kReturnStep, UpgradeStepState::kSkipped);
}

}  // namespace

ExitCode RunUpgrade(Context& context) {
  LidarLink link(context);
  const QString path = QString::fromStdString(context.arguments.path);
  const QUrl file = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
  LookAt(file, *link.model());
  link.Connect();

  KeepSnapshot(context, link, SnapshotReason::kUpgrade);
  UpgradeWaits waits;
  waits.lidar_returns = link.patience();
  FirmwareUpgrade upgrade({link.MakePost(), context.report, link.session(), [] {}, waits});
  const bool is_package = TakesPackages(link.model()->connect_type, link.model()->family);
  if ((is_package ? upgrade.StartPackage(file) : upgrade.Start(file)) != 0) {
    throw Failure(ExitCode::kNo, context.report.TakeError("the upgrade was not begun"));
  }
  context.report.Note("Upgrading; leave power and connection alone.");
  try {
    link.Wait([&] { return !upgrade.Now().running; },
              [&] { ShowProgress(upgrade.Now(), context.report); });
  } catch (const Failure& failure) {
    const UpgradeSnapshot now = upgrade.Now();
    throw Failure(failure.code(), std::string(failure.what()) + " at " +
                                      std::to_string(now.progress_kib) + " of " +
                                      std::to_string(now.total_kib) + " KiB")
        .With(ResultOf(now));
  }
  const UpgradeSnapshot ended = upgrade.Now();
  const QJsonObject result = ResultOf(ended);
  context.report.TakeError("");
  if (ended.failed) {
    const bool is_there = link.session().state().connected && link.session().CheckLink();
    const bool broke_off = WasLost(ended) || !is_there;
    throw Failure(broke_off ? ExitCode::kBrokenOff : ExitCode::kNo, ended.outcome).With(result);
  }
  context.output.Line(ended.outcome);
  context.output.Object(result);
  return ExitCode::kDone;
}
