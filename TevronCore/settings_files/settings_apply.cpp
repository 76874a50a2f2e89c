#include "settings_files/settings_apply.h"

#include <algorithm>
#include <exception>
#include <map>
#include <utility>

#include "CmxClient/cmx_client.h"
#include "pages/command_writer.h"
#include "pages/edit_session.h"
#include "pages/page_reader.h"
#include "settings_files/settings_reading.h"
#include "settings_files/value_bytes.h"
#include "variables/command_code.h"

namespace {

using Outcome = ApplyResult::Outcome;
using kavel::lidar::CmxClient;

constexpr char kHoldsAlready[] = "the lidar holds it already";

/// No command after the first one without an answer: the link is taken for lost.
constexpr int kPatience = 1;

/// One value that is to be written, and where its result stands.
struct Task {
  const PlannedValue* value;
  ApplyResult* result;
};

class Applier {
 public:
  Applier(const SettingsLidar& lidar, const ApplyPlan& plan, const WorkWatch& watch)
      : lidar_(lidar),
        table_(*lidar.model.table),
        watch_(watch),
        writer_(lidar.sender, table_, lidar.report) {
    report_.results.resize(plan.values.size());
    for (size_t i = 0; i < plan.values.size(); ++i) {
      Take(plan.values[i], &report_.results[i]);
    }
    PutNetworkLast(&commands_);
  }

  ApplyReport Run() {
    ReadPresentValues();
    for (const std::string& command : commands_) {
      if (report_.ended.empty()) {
        Tell();
        report_.ended = WhyNotNow(lidar_, watch_, &report_.lost);
      }
      if (report_.ended.empty()) {
        Apply(command);
      } else {
        Set(command, Outcome::kSkipped, "not reached: " + report_.ended);
      }
      ++done_;
    }
    Tell();
    report_.next_address = writer_.next_address();
    return std::move(report_);
  }

 private:
  void Take(const PlannedValue& value, ApplyResult* result) {
    result->name = value.name;
    result->wanted = value.wanted;
    result->holds = value.holds;
    result->reason = value.reason;
    if (value.step != PlannedValue::Step::kWrite) {
      return;
    }
    const std::string& command = CommandOf(*value.var);
    std::vector<Task>& tasks = tasks_[command];
    if (tasks.empty()) {
      commands_.push_back(command);
    }
    tasks.push_back({&value, result});
  }

  void Tell() const { TellProgress(watch_, reads_ + done_, reads_ + commands_.size()); }

  /// Of all that the command was to write.
  void Set(const std::string& command, Outcome outcome, const std::string& reason) {
    for (const Task& task : tasks_[command]) {
      task.result->outcome = outcome;
      task.result->reason = reason;
    }
  }

  void ReadPresentValues() {
    std::vector<const VarInfo*> fields;
    for (const std::string& command : commands_) {
      const std::vector<const VarInfo*> more = ReadableFields(table_, command);
      fields.insert(fields.end(), more.begin(), more.end());
    }
    const WorkWatch reading{watch_.stopped, [this](size_t done, size_t all) {
                              reads_ = all;
                              TellProgress(watch_, done, all + commands_.size());
                            }};
    const ManyRead read = ReadMany(lidar_, fields, reading, kPatience);
    unread_ = read.failed;
    report_.ended = read.ended;
    report_.lost = read.lost;
    writer_.NoteAnswer(!read.lost);
  }

  /// The text of what the lidar was last known to hold.
  std::string HeldText(const VarInfo& var) const {
    const ConfigParser::Value value = table_.ValueOf(var);
    return value.has_bytes ? TextOfBytes(var, value.bytes).value_or("") : "";
  }

  bool IsHeld(const PlannedValue& value) const {
    const ConfigParser::Value held = table_.ValueOf(*value.var);
    return unread_.count(value.var) == 0 && held.has_bytes && held.bytes == value.bytes;
  }

  /// What goes out untouched and is not known; null when there is none.
  const VarInfo* UnknownField(const std::string& command) const {
    const std::vector<Task>& tasks = tasks_.at(command);
    for (const VarInfo* field : table_.WrittenBy(command)) {
      const bool is_written = std::any_of(
          tasks.begin(), tasks.end(), [&](const Task& task) { return task.value->var == field; });
      if (!is_written && unread_.count(field) != 0) {
        return field;
      }
    }
    return nullptr;
  }

  void Apply(const std::string& command) {
    // The plan may be older than the last change of the lidar.
    std::vector<Task>& tasks = tasks_[command];
    const auto held = std::stable_partition(tasks.begin(), tasks.end(),
                                            [&](const Task& task) { return !IsHeld(*task.value); });
    std::for_each(held, tasks.end(), [&](const Task& task) {
      task.result->holds = HeldText(*task.value->var);
      task.result->reason = kHoldsAlready;
    });
    tasks.erase(held, tasks.end());
    if (tasks.empty()) {
      return;
    }
    if (const VarInfo* const unknown = UnknownField(command)) {
      Refuse(command, "nothing was sent: " + unknown->var_name +
                          ", which goes with it, could not be read (" + unread_.at(unknown) + ")");
      return;
    }
    PayloadBuilder builder(table_);
    for (const Task& task : tasks) {
      // The angles are no text of the table, where they have fields of their own.
      const std::string& text = task.value->wanted;
      builder.Put(*task.value->var, IsFovTable(*task.value->var) ? "" : text, task.value->bytes);
    }
    try {
      Send(command, builder.Build(command));
    } catch (const std::exception& e) {
      Refuse(command, e.what());
    }
  }

  void Send(const std::string& command, const SetCommand& built) {
    const CommandWriter::Outcome sent = writer_.Send(command, built);
    if (sent.dropped) {
      Set(command, Outcome::kWritten, "taken, the lidar dropped the link for it: not read back");
      Log(command, "taken, the link was dropped", LogType::kInfo);
    } else if (sent.taken) {
      ReadBack(command, "");
    } else if (sent.error == 0) {
      // It answered something else: only what it holds tells whether it took the command.
      ReadBack(command, CmxClient::ErrorText(sent.error));
    } else if (IsSilence(sent.error)) {
      Set(command, Outcome::kSkipped,
          CmxClient::ErrorText(sent.error) + ": whether it was taken is not known");
      Log(command, CmxClient::ErrorText(sent.error), LogType::kWarning);
      report_.ended = "the link was lost";
      report_.lost = true;
    } else {
      report_.lidar_code = report_.lidar_code == 0 ? std::max(sent.error, 0) : report_.lidar_code;
      Refuse(command, CmxClient::ErrorText(sent.error));
    }
  }

  /// `doubt` is why nobody knows yet whether the command was taken; empty for a taken one.
  void ReadBack(const std::string& command, const std::string& doubt) {
    std::vector<const VarInfo*> vars;
    for (const Task& task : tasks_[command]) {
      vars.push_back(task.value->var);
    }
    // Also when somebody stops it now: what was sent has to be told.
    const ManyRead read = ReadMany(lidar_, vars, {}, kPatience);
    bool all_held = true;
    for (const Task& task : tasks_[command]) {
      Judge(read, doubt, task);
      all_held = all_held && task.result->outcome == Outcome::kWritten;
    }
    const bool is_network = IsCommand(command, kNetworkCommand) && doubt.empty();
    const char* const not_held = !doubt.empty()        ? "not taken, or not read back"
                                 : read.failed.empty() ? "written, and the lidar holds other values"
                                                       : "written, and not read back";
    Log(command, all_held ? "written" : not_held, all_held ? LogType::kInfo : LogType::kWarning);
    // A lidar that has taken network settings and said so drops the link as well.
    if (!is_network) {
      report_.unproven += read.failed.size();
      report_.ended = read.ended;
      report_.lost = read.lost;
    }
  }

  void Judge(const ManyRead& read, const std::string& doubt, const Task& task) const {
    const VarInfo& var = *task.value->var;
    const auto failure = read.failed.find(&var);
    if (failure != read.failed.end()) {
      task.result->outcome = doubt.empty() ? Outcome::kWritten : Outcome::kSkipped;
      task.result->reason = doubt.empty() ? "taken, and not read back: " + failure->second
                                          : doubt + ": whether it was taken is not known";
      return;
    }
    const bool is_held = table_.ValueOf(var).bytes == task.value->bytes;
    task.result->holds = HeldText(var);
    const Outcome not_held = doubt.empty() ? Outcome::kDiffers : Outcome::kRefused;
    const std::string why = doubt.empty() ? "taken, and the lidar holds another value" : doubt;
    task.result->outcome = is_held ? Outcome::kWritten : not_held;
    task.result->reason = is_held ? task.value->reason : why;
  }

  void Refuse(const std::string& command, const std::string& reason) {
    Set(command, Outcome::kRefused, reason);
    Log(command, "refused, " + reason, LogType::kWarning);
  }

  void Log(const std::string& command, const std::string& what, LogType type) {
    std::string names;
    for (const Task& task : tasks_[command]) {
      names += (names.empty() ? "" : ", ") + task.result->name;
    }
    lidar_.report.LogLine("Settings: [" + command + "] " + names + ": " + what + ".", type);
  }

  const SettingsLidar& lidar_;
  ConfigParser& table_;
  const WorkWatch& watch_;
  CommandWriter writer_;
  ApplyReport report_;
  std::vector<std::string> commands_;               ///< in the order of sending
  std::map<std::string, std::vector<Task>> tasks_;  ///< by command
  std::map<const VarInfo*, std::string> unread_;    ///< with the reason
  size_t reads_ = 0;
  size_t done_ = 0;
};

/// Nothing is sent while something is in the way.
ApplyReport Refused(const ApplyPlan& plan) {
  ApplyReport report;
  report.ended = plan.refusal.empty() ? "some values cannot be written" : plan.refusal;
  for (const PlannedValue& value : plan.values) {
    ApplyResult result{value.name, Outcome::kSkipped, value.wanted, value.holds, value.reason};
    if (value.step == PlannedValue::Step::kBlock) {
      result.outcome = Outcome::kRefused;
    } else if (value.step == PlannedValue::Step::kWrite) {
      result.reason = "not reached: " + report.ended;
    }
    report.results.push_back(std::move(result));
  }
  return report;
}

}  // namespace

const char* TextOf(ApplyResult::Outcome outcome) {
  switch (outcome) {
    case Outcome::kWritten:
      return "written";
    case Outcome::kRefused:
      return "refused";
    case Outcome::kDiffers:
      return "differs";
    case Outcome::kSkipped:
      return "skipped";
  }
  return "";
}

size_t ApplyReport::Count(ApplyResult::Outcome outcome) const {
  return static_cast<size_t>(
      std::count_if(results.begin(), results.end(),
                    [&](const ApplyResult& result) { return result.outcome == outcome; }));
}

bool ApplyReport::succeeded() const {
  return ended.empty() && unproven == 0 && Count(Outcome::kRefused) == 0 &&
         Count(Outcome::kDiffers) == 0;
}

ApplyReport RunApply(const SettingsLidar& lidar, const ApplyPlan& plan, const WorkWatch& watch) {
  return plan.may_run() ? Applier(lidar, plan, watch).Run() : Refused(plan);
}
