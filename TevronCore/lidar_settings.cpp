#include "lidar_settings.h"

#include <QFileInfo>
#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <utility>

#include "files/whole_file.h"
#include "session/posted_report.h"
#include "session/stop_signal.h"
#include "settings_files/settings_reading.h"

namespace {

constexpr char kBusy[] = "Please wait until the settings of the lidar are read or written";

std::string NameOf(const QString& path) {
  return PathText(QFileInfo(path).fileName().toStdString());
}

/// Null, with a sentence in *problem, for a file that cannot be used.
std::shared_ptr<const SettingsFile> Load(const QString& path, std::string* problem) {
  const std::optional<SettingsFile> file = LoadSettings(path, problem);
  return file ? std::make_shared<const SettingsFile>(*file) : nullptr;
}

/// "Applied: 12 written and read back, 1 refused."
std::string SentenceOf(const ApplyReport& report) {
  using Outcome = ApplyResult::Outcome;
  std::string counts;
  const auto add = [&](Outcome outcome, const char* words) {
    if (const size_t count = report.Count(outcome); count > 0) {
      counts += (counts.empty() ? "" : ", ") + std::to_string(count) + ' ' + words;
    }
  };
  add(Outcome::kWritten, "written");
  add(Outcome::kRefused, "refused");
  add(Outcome::kDiffers, "taken as another value");
  add(Outcome::kSkipped, "skipped");
  return report.ended.empty() ? "Applied: " + counts + '.'
                              : "Broken off, " + report.ended + ": " + counts + '.';
}

/// Returns "", or why there is no snapshot; says so in the log.
std::string Keep(const SettingsLidar& lidar, SnapshotReason reason, const WorkWatch& watch) {
  const SettingsReading reading = ReadSettings(lidar, watch);
  std::string problem =
      reading.ended.empty() ? Snapshots().Keep(reading.file, reason) : reading.ended;
  const std::string when = TextOf(reason);
  if (problem.empty()) {
    lidar.report.LogLine("A snapshot of the settings was saved " + when + '.', LogType::kInfo);
  } else {
    lidar.report.LogLine("No snapshot of the settings could be saved " + when + ": " + problem,
                         LogType::kWarning);
  }
  return problem;
}

size_t CountUnread(const SettingsFile& file) {
  return static_cast<size_t>(std::count_if(file.values.begin(), file.values.end(),
                                           [](const SavedValue& v) { return !v.was_read(); }));
}

}  // namespace

struct LidarSettings::Progress {
  std::atomic<size_t> done{0};
  std::atomic<size_t> all{0};
};

/// What a task works with on its thread.
struct LidarSettings::Work {
  std::shared_ptr<Connection> connection;  ///< null: there is none
  std::shared_ptr<LidarModel> model;
  const LinkState& state;
  ReadFailures& failures;
  std::shared_ptr<UserReport> report;
  std::shared_ptr<StopSignal> stop;
  std::shared_ptr<Progress> progress;

  WorkWatch Watch() const {
    return {[stop = stop] { return stop->IsRaised(); },
            [progress = progress](size_t done, size_t all) {
              progress->all = all;
              progress->done = done;
            }};
  }
  SettingsLidar Lidar() const { return {*connection->sender(), *model, state, failures, *report}; }
};

LidarSettings::LidarSettings(SetUp set_up) : set_up_(std::move(set_up)) {}

LidarSettings::~LidarSettings() {
  ++*number_;
  if (shown_.task != SettingsTask::kNone && job_->connection != nullptr) {
    job_->connection->Close();  // wakes the worker out of its exchange
  }
  job_.reset();
  set_up_.session.state().applying = false;
}

bool LidarSettings::MayBegin() {
  if (shown_.task != SettingsTask::kNone) {
    set_up_.report.Error(kBusy);
    return false;
  }
  return true;
}

/// Why no task with the lidar may begin now; "" when one may.
std::string LidarSettings::Obstacle() const {
  const LidarSession& session = set_up_.session;
  if (session.model()->connect_type != kNetworkLink) {
    return "There are no settings to be saved or applied: a " + session.model()->name +
           " has no pages.";
  }
  if (const char* obstacle = session.state().Obstacle(session.sender().get())) {
    return obstacle;
  }
  return shown_.task == SettingsTask::kNone ? "" : kBusy;
}

bool LidarSettings::MayUseLidar() {
  const std::string obstacle = Obstacle();
  if (!obstacle.empty()) {
    set_up_.report.Error(obstacle);
  }
  return obstacle.empty();
}

std::function<bool()> LidarSettings::Current() const {
  return [then = *number_, number = std::weak_ptr<const int>(number_)] {
    const std::shared_ptr<const int> now = number.lock();
    return now != nullptr && *now == then;
  };
}

void LidarSettings::Begin(SettingsTask task, const std::function<Ending(Work&)>& run) {
  job_.reset();
  ++*number_;
  shown_ = {task, false, 0, 0, "", false};
  progress_ = std::make_shared<Progress>();
  LidarSession& session = set_up_.session;
  const auto is_current = Current();
  const auto work = std::make_shared<Work>(
      Work{session.connection(), session.model(), session.state(), session.read_failures(),
           std::make_shared<PostedReport>(set_up_.post, set_up_.report, is_current),
           std::make_shared<StopSignal>(), progress_});
  job_ = std::make_unique<ConnectionJob>(
      work->connection, work->stop, [this, work, run, post = set_up_.post, is_current] {
        Ending end;
        try {
          end = run(*work);
        } catch (const std::exception& e) {
          end = [this, reason = std::string(e.what())] { Fail("It broke off: " + reason + "."); };
        }
        post([this, end, is_current] {
          if (is_current()) {
            Finish(end);
          }
        });
      });
  emit changed();
}

void LidarSettings::Finish(const Ending& end) {
  job_.reset();  // has ended, and holds a connection
  shown_.task = SettingsTask::kNone;
  set_up_.session.state().applying = false;
  end();
  if (shown_.task == SettingsTask::kNone) {
    shown_.cancelling = false;
    emit changed();
  }
}

void LidarSettings::Conclude(const std::string& outcome) {
  shown_.outcome = outcome;
  set_up_.report.LogLine(outcome, LogType::kInfo);
}

void LidarSettings::Fail(const std::string& reason) {
  shown_.outcome = reason;
  shown_.failed = true;
  set_up_.report.Error(reason);
}

void LidarSettings::NotDone(const std::string& what, const std::string& why) {
  if (shown_.cancelling) {
    Conclude(what + ": cancelled.");
  } else {
    Fail(what + ": " + why + (why.back() == '.' ? "" : "."));
  }
}

void LidarSettings::Show(SettingsComparison comparison) {
  comparison_ = std::make_shared<const SettingsComparison>(std::move(comparison));
}

void LidarSettings::Save(const QString& path) {
  if (!MayUseLidar()) {
    return;
  }
  Begin(SettingsTask::kSaving, [this, path](Work& work) -> Ending {
    const SettingsReading reading = ReadSettings(work.Lidar(), work.Watch());
    const bool is_whole = reading.ended.empty();
    const std::string problem = is_whole ? SaveSettings(path, reading.file) : reading.ended;
    const size_t all = reading.file.values.size();
    const size_t unread = CountUnread(reading.file);
    return [this, path, problem, all, unread] {
      set_up_.values_read();
      if (!problem.empty()) {
        NotDone("The settings were not saved", problem);
        return;
      }
      shown_.outcome = std::to_string(all - unread) + " values saved to " + NameOf(path) + ".";
      set_up_.report.Success(shown_.outcome);
      if (unread > 0) {
        set_up_.report.LogLine(std::to_string(unread) + " values could not be read: " +
                                   PathText(path.toStdString()) + " says why.",
                               LogType::kWarning);
      }
    };
  });
}

void LidarSettings::Read(
    std::function<void(const std::optional<SettingsFile>& held, const std::string& problem)> then) {
  if (const std::string obstacle = Obstacle(); !obstacle.empty()) {
    then(std::nullopt, obstacle);
    return;
  }
  Begin(SettingsTask::kReading, [this, then = std::move(then)](const Work& work) -> Ending {
    const SettingsReading reading = ReadSettings(work.Lidar(), work.Watch());
    return [this, then, reading] {
      set_up_.values_read();
      if (!shown_.cancelling) {
        then(reading.ended.empty() ? std::make_optional(reading.file) : std::nullopt,
             reading.ended);
      }
    };
  });
}

void LidarSettings::CompareWithLidar(const QString& path) {
  if (!MayUseLidar()) {
    return;
  }
  Begin(SettingsTask::kComparing, [this, path](Work& work) -> Ending {
    std::string problem;
    const auto file = Load(path, &problem);
    if (file == nullptr) {
      return [this, problem] { NotDone("The file cannot be used", problem); };
    }
    SettingsReading reading = ReadSettings(work.Lidar(), work.Watch());
    if (!reading.ended.empty()) {
      return [this, why = reading.ended] {
        set_up_.values_read();
        NotDone("The lidar could not be compared", why);
      };
    }
    const auto held = std::make_shared<const SettingsFile>(std::move(reading.file));
    return [this, connection = work.connection,
            comparison = ComparisonWithLidar({path.toStdString(), file}, held, *work.model)] {
      set_up_.values_read();
      compared_with_ = connection;
      Show(comparison);
    };
  });
}

void LidarSettings::CompareFiles(const QString& left, const QString& right) {
  if (!MayBegin()) {
    return;
  }
  Begin(SettingsTask::kComparing, [this, left, right](Work& work) -> Ending {
    std::string problem;
    const auto one = Load(left, &problem);
    const auto other = one == nullptr || right.isEmpty() ? nullptr : Load(right, &problem);
    if (!problem.empty()) {
      return [this, problem] { NotDone("The file cannot be used", problem); };
    }
    return [this, comparison = ComparisonOfFiles({left.toStdString(), one},
                                                 {right.toStdString(), other}, *work.model)] {
      Show(comparison);
    };
  });
}

void LidarSettings::Open(const QString& path) { CompareFiles(path, QString()); }

// Only what was asked for is in the report: the rest of the file is none of it.
ApplyReport LidarSettings::RunOn(const Work& work, const SettingsComparison& shown,
                                 const std::set<std::string>& names) {
  LinkState own;  // the session's says that settings are applied, which keeps everybody else away
  own.connected = true;
  ApplyWish wish;
  wish.only = names;
  ApplyPlan plan = PlanApply(*work.model, *shown.right.settings, *shown.left.settings, wish);
  std::vector<PlannedValue> asked_for;
  for (PlannedValue& value : plan.values) {
    if (names.count(value.name) != 0) {
      // One that cannot be written is told of, and keeps none of the others back.
      value.step =
          value.step == PlannedValue::Step::kBlock ? PlannedValue::Step::kSkip : value.step;
      asked_for.push_back(std::move(value));
    }
  }
  plan.values = std::move(asked_for);
  return RunApply({*work.connection->sender(), *work.model, own, work.failures, *work.report}, plan,
                  work.Watch());
}

void LidarSettings::Apply(const std::vector<std::string>& names) {
  if (comparison_ == nullptr || !comparison_->with_lidar || names.empty() || !MayUseLidar()) {
    return;
  }
  if (compared_with_.lock() != set_up_.session.connection()) {
    set_up_.report.Error("The lidar was connected anew since it was compared. Compare it again.");
    return;
  }
  set_up_.session.state().applying = true;
  Begin(SettingsTask::kApplying,
        [this, shown = comparison_,
         asked_for = std::set<std::string>(names.begin(), names.end())](Work& work) -> Ending {
          const ApplyReport report = RunOn(work, *shown, asked_for);
          return [this, report] { TakeApplied(report); };
        });
}

void LidarSettings::TakeApplied(const ApplyReport& report) {
  SettingsComparison applied = *comparison_;
  TakeReport(report, *set_up_.session.model(), &applied);
  Show(std::move(applied));
  if (!report.next_address.empty()) {
    set_up_.session.NoteNextAddress(report.next_address);
  }
  set_up_.values_read();
  shown_.failed = !report.succeeded();
  shown_.outcome = SentenceOf(report);
  set_up_.report.LogLine(shown_.outcome, shown_.failed ? LogType::kWarning : LogType::kSuccess);
}

void LidarSettings::TakeSnapshot(SnapshotReason reason,
                                 std::function<void(const std::string& problem)> then) {
  if (!MayUseLidar()) {
    return;
  }
  Begin(SettingsTask::kSnapshot,
        [this, reason, then = std::move(then)](const Work& work) -> Ending {
          const std::string problem = Keep(work.Lidar(), reason, work.Watch());
          return [this, then, problem] {
            set_up_.values_read();
            if (!shown_.cancelling) {
              then(problem);
            }
          };
        });
}

// Meant: only the log is told, since an upgrade does not wait for an answer.
void LidarSettings::KeepBeforeUpgrade(const UpgradeWork& work) {
  if (work.model->connect_type != kNetworkLink) {
    work.report->LogLine(
        "No snapshot before the upgrade: a " + work.model->name + " has no pages with settings.",
        LogType::kInfo);
    return;
  }
  LinkState own;  // the session's says that the lidar is being upgraded
  own.connected = true;
  ReadFailures failures;
  Keep({*work.connection->sender(), *work.model, own, failures, *work.report},
       SnapshotReason::kUpgrade, {[stop = work.stop] { return stop->IsRaised(); }, nullptr});
}

void LidarSettings::Cancel() {
  if (shown_.task != SettingsTask::kNone) {
    shown_.cancelling = true;
    job_->stop->Raise();
    emit changed();
  }
}

// The task ends by itself, and what it brings belongs to nobody.
void LidarSettings::TakeModel() {
  ++*number_;
  if (job_ != nullptr) {
    job_->stop->Raise();
  }
  set_up_.session.state().applying = false;
  shown_ = {};
  comparison_.reset();
  emit changed();
}

SettingsStatus LidarSettings::Now() const {
  SettingsStatus now = shown_;
  if (now.task != SettingsTask::kNone) {
    now.all = progress_->all;
    now.done = std::min<size_t>(progress_->done, now.all);
  }
  return now;
}
