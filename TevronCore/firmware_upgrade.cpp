#include "firmware_upgrade.h"

#include <algorithm>
#include <utility>

#include "session/posted_report.h"
#include "upgrade/kiva_upgrade.h"
#include "upgrade/network_upgrade.h"
#include "upgrade/upgrade_mode.h"
#include "upgrade/upgrade_package.h"

namespace {

constexpr unsigned kKibShift = 10;
/// A lidar that has just come back may miss a command.
constexpr int kVersionTries = 3;
constexpr std::chrono::milliseconds kVersionPause{500};
constexpr std::chrono::milliseconds kLeavePause{100};

/// Whether the lidar can no longer be reached over this connection.
bool IsLost(const Connection& connection) { return !LidarAnswers(*connection.sender()); }

/// Watches the lidar fall silent after the order to restart. One that is slow to go down answers
/// with its old version until it does.
bool IsSeenLeaving(const UpgradeWork& work) {
  const auto ends = std::chrono::steady_clock::now() + work.waits.lidar_leaves;
  while (std::chrono::steady_clock::now() < ends && !work.stop->WaitFor(kLeavePause)) {
    if (!work.connection->IsAnswered()) {
      return true;
    }
  }
  return false;
}

UpgradeReadBack ReadBackOf(const RunningFirmware& before, const RunningFirmware& after) {
  using Found = UpgradeReadBack::Found;
  if (after.version.empty()) {
    return {Found::kSilent, ""};
  }
  const bool is_another = !before.serial_number.empty() && !after.serial_number.empty() &&
                          after.serial_number != before.serial_number;
  return {is_another ? Found::kAnother : Found::kRead, after.version};
}

UpgradeResult RunGuarded(UpgradeResult (*run)(UpgradeWork&), UpgradeWork& work) {
  UpgradeResult result;
  try {
    return run(work);
  } catch (const std::bad_alloc&) {
    result.reason = "There was no memory for the upgrade.";
  } catch (const std::exception& e) {
    result.reason = std::string("The upgrade broke off: ") + e.what() + ".";
  }
  if (work.connection->serial() != nullptr) {
    LeaveUpgradeMode(*work.connection->serial(), *work.report);
  }
  work.report->Error(result.reason);
  work.transfer_ended();
  return result;
}

}  // namespace

FirmwareUpgrade::FirmwareUpgrade(SetUp set_up) : set_up_(std::move(set_up)) {}

FirmwareUpgrade::~FirmwareUpgrade() {
  ++*number_;
  if (job_ != nullptr) {
    job_->stop->Raise();
    job_->connection->Close();  // wakes the worker out of its exchange
    job_.reset();
    set_up_.session.state().upgrading = false;
  }
}

int FirmwareUpgrade::Start(const QUrl& url) {
  if (set_up_.session.state().applying) {
    set_up_.report.Error(LinkState::kAppliesSettings);
    return -1;
  }
  if (!MayStart()) {
    // Meant: "upgrade" here, "upgrading" for a package.
    set_up_.report.Error("lidar is not connected, or lidar is upgrade");
    return -1;
  }
  UpgradeFile file = ReadUpgradeFile(url);
  // Meant: nothing is said of a file that does not open. The screen that offers it looks at it.
  if (file.opened) {
    Begin(std::move(file), RunNetworkUpgrade);
  }
  return 0;
}

int FirmwareUpgrade::StartPackage(const QUrl& url) {
  if (!MayStart() || set_up_.session.model()->connect_type != kSerialCmx) {
    set_up_.report.Error("lidar is not connected, or lidar is upgrading");
    return -1;
  }
  UpgradeFile file = ReadUpgradeFile(url);
  if (file.bytes.size() != file.size_bytes || !file.opened) {
    set_up_.report.LogLine(file.name + ": " + file.problem, LogType::kError);
    set_up_.report.Error("Failed to open upgrade file");
    return -1;
  }
  if (file.size_bytes < kUpgradeHeaderSize) {
    set_up_.report.Error("Upgrade package too small");
    return -1;
  }
  Begin(std::move(file), RunKivaUpgrade);
  return 0;
}

bool FirmwareUpgrade::MayStart() const {
  const LidarSession& session = set_up_.session;
  const std::shared_ptr<Connection>& connection = session.connection();
  if (!session.state().connected || session.state().upgrading || connection == nullptr) {
    return false;
  }
  switch (session.model()->connect_type) {
    case kSerialPair:
      return connection->serial() != nullptr;
    case kSerialCmx:
      return connection->serial() != nullptr && connection->sender()->IsOpen();
    default:
      return true;
  }
}

std::function<bool()> FirmwareUpgrade::Current() const {
  return [then = *number_, number = std::weak_ptr<const int>(number_)] {
    const std::shared_ptr<const int> now = number.lock();
    return now != nullptr && *now == then;
  };
}

Post FirmwareUpgrade::Later() const {
  return [post = set_up_.post, is_current = Current()](std::function<void()> task) {
    post([is_current, task = std::move(task)] {
      if (is_current()) {
        task();
      }
    });
  };
}

void FirmwareUpgrade::Begin(UpgradeFile file, Run run) {
  job_.reset();
  ++*number_;
  LidarSession& session = set_up_.session;
  result_ = {};
  before_ = {};
  progress_->done_kib = 0;
  // Meant: cut down here, where the components of a package are rounded up.
  progress_->total_kib = static_cast<int>(file.size_bytes >> kKibShift);
  shown_ = {};
  shown_.running = true;
  shown_.file_name = file.name;
  shown_.version_before = session.RunningVersion();
  for (const char* name : {kTransferStep, kRestartStep, kReturnStep, kCompareStep}) {
    shown_.steps.push_back({name});
  }
  const auto stop = std::make_shared<StopSignal>();
  const auto work = std::make_shared<UpgradeWork>(WorkOf(std::move(file), stop));
  session.state().upgrading = true;
  session.KeepWhenLost(true);
  set_up_.upgrading_changed();
  job_ = std::make_unique<ConnectionJob>(
      work->connection, stop, [this, work, run, later = Later()] { Work(*work, run, later); });
}

UpgradeWork FirmwareUpgrade::WorkOf(UpgradeFile file, std::shared_ptr<StopSignal> stop) {
  const LidarSession& session = set_up_.session;
  const Post later = Later();
  UpgradeWork work{session.connection(),
                   session.model(),
                   static_cast<uint32_t>(session.settings().command_baud_rate_bps),
                   session.state(),
                   std::move(file.bytes),
                   std::move(file.problem),
                   set_up_.waits,
                   std::move(stop),
                   std::make_shared<PostedReport>(set_up_.post, set_up_.report, Current()),
                   progress_};
  work.transfer_ended = [this, later, stop = work.stop] {
    const auto is_told = std::make_shared<bool>(false);
    later([this, stop, is_told] {
      EndTransfer();
      stop->Tell([&is_told] { *is_told = true; });
    });
    stop->WaitUntil([&is_told] { return *is_told; });
  };
  work.step = [this, later](const std::string& name, UpgradeStepState state) {
    later([this, name, state] { ShowStep(name, state); });
  };
  work.plan = [this, later](const std::vector<std::string>& components) {
    later([this, components] { ShowPlan(components); });
  };
  return work;
}

// On the worker's thread: touches nothing of the object but what never changes.
void FirmwareUpgrade::Work(UpgradeWork& work, Run run, const Post& later) {
  if (work.stop->WaitFor(work.waits.begin)) {
    return;
  }
  kavel::lidar::CommandSender& sender = *work.connection->sender();
  // What the session knows may be older than a restart that it has not seen.
  const RunningFirmware before = ReadRunningFirmware(sender, *work.model, work.report);
  later([this, before] { TakeBefore(before); });
  if (set_up_.snapshot != nullptr) {
    set_up_.snapshot(work);
  }
  UpgradeResult result = RunGuarded(run, work);
  UpgradeReadBack read_back;
  bool may_be_gone = result.end == UpgradeResult::End::kRestarts;
  if (may_be_gone) {
    work.step(kReturnStep, UpgradeStepState::kRunning);
    result.has_left = IsSeenLeaving(work);
  } else if (!work.stop->IsRaised()) {
    read_back = ReadBackOf(before, ReadRunningFirmware(sender, *work.model, work.report));
    may_be_gone = read_back.version.empty() && !work.stop->IsRaised() && IsLost(*work.connection);
  }
  later([this, result, read_back, may_be_gone] { TakeResult(result, read_back, may_be_gone); });
}

void FirmwareUpgrade::TakeBefore(const RunningFirmware& before) {
  before_ = before;
  shown_.version_before = before.version;
}

// Meant: the pause, the restart and the wait that follow are no longer the upgrade's alone.
void FirmwareUpgrade::EndTransfer() {
  set_up_.session.state().upgrading = false;
  set_up_.upgrading_changed();
}

void FirmwareUpgrade::ShowStep(const std::string& name, UpgradeStepState state) {
  for (UpgradeStep& step : shown_.steps) {
    if (step.name == name) {
      step.state = state;
    }
  }
}

void FirmwareUpgrade::ShowPlan(const std::vector<std::string>& components) {
  std::vector<UpgradeStep> steps;
  steps.reserve(components.size() + shown_.steps.size());
  for (const std::string& name : components) {
    steps.push_back({name});
  }
  std::copy_if(shown_.steps.begin(), shown_.steps.end(), std::back_inserter(steps),
               [](const UpgradeStep& step) { return step.name != kTransferStep; });
  shown_.steps = std::move(steps);
}

bool FirmwareUpgrade::IsHeld() const { return set_up_.session.connection() == job_->connection; }

// A connection that somebody else ended is left ended.
void FirmwareUpgrade::TakeResult(const UpgradeResult& result, const UpgradeReadBack& read_back,
                                 bool may_be_gone) {
  result_ = result;
  set_up_.session.KeepWhenLost(false);
  const bool is_lost = may_be_gone || !job_->connection->sender()->IsOpen();
  if (!is_lost || !IsHeld()) {
    Conclude(IsHeld() || !read_back.version.empty() ? read_back : UpgradeReadBack{});
    return;
  }
  ShowStep(kReturnStep, UpgradeStepState::kRunning);
  const auto take = [this, is_current = Current()](LidarSession::Return outcome) {
    if (is_current()) {
      TakeReturn(outcome);
    }
  };
  set_up_.session.AwaitReturn(set_up_.waits.lidar_returns, take);
}

void FirmwareUpgrade::TakeReturn(LidarSession::Return outcome) {
  if (outcome != LidarSession::Return::kBack) {
    Conclude({outcome == LidarSession::Return::kNotBack ? UpgradeReadBack::Found::kNotBack
                                                        : UpgradeReadBack::Found::kEnded,
              ""});
    return;
  }
  ShowStep(kReturnStep, UpgradeStepState::kDone);
  if (result_.end == UpgradeResult::End::kRestarts) {
    ShowStep(kCompareStep, UpgradeStepState::kRunning);
  }
  const auto stop = std::make_shared<StopSignal>();
  const auto report = std::make_shared<PostedReport>(set_up_.post, set_up_.report, Current());
  const std::shared_ptr<Connection> connection = set_up_.session.connection();
  job_ = std::make_unique<ConnectionJob>(
      connection, stop,
      [this, connection, stop, report, later = Later(), model = set_up_.session.model()] {
        RunningFirmware after;
        for (int i = 0; i < kVersionTries && after.version.empty(); ++i) {
          if (i > 0 && stop->WaitFor(kVersionPause)) {
            return;
          }
          after = ReadRunningFirmware(*connection->sender(), *model, report);
        }
        later(
            [this, after] { Conclude(IsHeld() ? ReadBackOf(before_, after) : UpgradeReadBack{}); });
      });
}

void FirmwareUpgrade::Conclude(const UpgradeReadBack& read_back) {
  const UpgradeOutcome outcome =
      OutcomeOf(result_, shown_.version_before, read_back, set_up_.waits.lidar_returns.returns);
  for (UpgradeStep& step : shown_.steps) {
    if (step.state == UpgradeStepState::kRunning) {
      step.state = outcome.failed ? UpgradeStepState::kFailed : UpgradeStepState::kDone;
    } else if (step.state == UpgradeStepState::kPending) {
      step.state = UpgradeStepState::kSkipped;
    }
  }
  shown_.running = false;
  shown_.failed = outcome.failed;
  shown_.outcome = outcome.text;
  shown_.version_after = read_back.found == UpgradeReadBack::Found::kRead ? read_back.version : "";
  set_up_.report.LogLine(outcome.text, outcome.failed ? LogType::kError : LogType::kSuccess);
}

UpgradeSnapshot FirmwareUpgrade::Now() const {
  UpgradeSnapshot now = shown_;
  now.progress_kib = progress_->done_kib;
  now.total_kib = progress_->total_kib;
  return now;
}
