// Values onto the lidar: those of a file, and those of the command line.

#include <set>
#include <string>

#include "commands/commands.h"
#include "lidar_settings.h"
#include "names.h"
#include "settings_files/settings_apply.h"
#include "values.h"

namespace {

using Outcome = ApplyResult::Outcome;
using Step = PlannedValue::Step;

QString Text(const std::string& text) { return QString::fromStdString(text); }

QJsonObject ObjectOf(const ApplyResult& result) {
  return {{"name", Text(result.name)},
          {"outcome", TextOf(result.outcome)},
          {"wanted", Text(result.wanted)},
          {"holds", Text(result.holds)},
          {"reason", Text(result.reason)}};
}

std::string LineOf(const ApplyResult& result) {
  std::string line = std::string(TextOf(result.outcome)) + "  " + result.name;
  if (!result.wanted.empty()) {
    line += " = " + result.wanted;
  }
  const bool is_news = !result.holds.empty() && result.holds != result.wanted;
  line += is_news ? ", holds " + result.holds : "";
  return result.reason.empty() ? line : line + " (" + result.reason + ")";
}

/// What became of each value, beside what it is now.
void AddOutcomes(const ApplyReport& report, QJsonArray* values) {
  for (QJsonValueRef entry : *values) {
    QJsonObject value = entry.toObject();
    for (const ApplyResult& result : report.results) {
      if (value["name"] == Text(result.name)) {
        value["outcome"] = TextOf(result.outcome);
        value["reason"] = Text(result.reason);
      }
    }
    entry = value;
  }
}

/// What the plan would do, in the words of what was done.
ApplyReport Foretell(const ApplyPlan& plan) {
  ApplyReport report;
  for (const PlannedValue& value : plan.values) {
    const bool is_written = value.step == Step::kWrite;
    report.results.push_back(
        {value.name, value.step == Step::kBlock ? Outcome::kRefused : Outcome::kSkipped,
         value.wanted, value.holds, is_written ? "would be written" : value.reason});
  }
  return report;
}

/// Throws a Failure for a plan that may not run: nothing was sent.
void CheckPlan(const ApplyPlan& plan, const QJsonObject& result) {
  if (!plan.refusal.empty()) {
    throw Failure(ExitCode::kUsage, plan.refusal).With(result);
  }
  for (const PlannedValue& value : plan.values) {
    if (value.step == Step::kBlock) {
      throw Failure(ExitCode::kUsage, "nothing was written: " + value.name +
                                          (value.wanted.empty() ? "" : " = " + value.wanted) +
                                          ": " + value.reason)
          .With(result);
    }
  }
}

/// Throws a Failure for everything but a full success.
void CheckReport(const Context& context, const ApplyReport& report, const QJsonObject& result) {
  if (report.succeeded()) {
    return;
  }
  const size_t written = report.Count(Outcome::kWritten);
  if (!report.ended.empty()) {
    const ExitCode code = context.interrupt.raised() ? ExitCode::kInterrupted
                          : report.lost              ? ExitCode::kBrokenOff
                                                     : ExitCode::kNo;
    throw Failure(code, "broken off after " + std::to_string(written) +
                            (written == 1 ? " value: " : " values: ") + report.ended)
        .With(result);
  }
  throw Failure(ExitCode::kNo,
                std::to_string(report.Count(Outcome::kRefused)) + " refused, " +
                    std::to_string(report.Count(Outcome::kDiffers)) + " differ, " +
                    std::to_string(written) + " written, " + std::to_string(report.unproven) +
                    " could not be read back",
                report.lidar_code > 0 ? std::optional(report.lidar_code) : std::nullopt)
      .With(result);
}

ApplyPlan MakePlan(Context& context, LidarLink& link, const SettingsFile& present,
                   const SettingsFile& wanted, const ApplyWish& wish) {
  ApplyPlan plan = PlanApply(*link.model(), present, wanted, wish);
  for (const std::string& warning : plan.warnings) {
    context.report.LogLine(warning, LogType::kWarning);
  }
  return plan;
}

ApplyReport Run(Context& context, LidarLink& link, const ApplyPlan& plan) {
  ApplyReport report = RunApply(SettingsOf(context, link), plan, WatchOf(context, "Writing"));
  context.report.EndProgress();
  if (!report.next_address.empty()) {
    context.report.Note("After its restart the lidar is reached at " + report.next_address + '.');
  }
  return report;
}

/// "NAME=VALUE" as a settings file without a model.
SettingsFile WantedBy(const std::vector<std::string>& assignments, const LidarModel& model,
                      std::vector<const VarInfo*>* vars) {
  const std::vector<const VarInfo*> known = SavedVariables(*model.table);
  std::vector<std::string> names;
  names.reserve(known.size());
  for (const VarInfo* var : known) {
    names.push_back(var->var_name);
  }
  SettingsFile wanted;
  for (const std::string& assignment : assignments) {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos || equals == 0) {
      throw Failure(ExitCode::kUsage, "\"" + assignment + "\" is not of the form NAME=VALUE");
    }
    const VarInfo* var = known[MatchName(names, assignment.substr(0, equals), "variable")];
    if (wanted.Find(var->var_name) != nullptr) {
      throw Failure(ExitCode::kUsage, var->var_name + " is given twice");
    }
    SavedValue value;
    value.name = var->var_name;
    value.text = assignment.substr(equals + 1);
    wanted.values.push_back(std::move(value));
    vars->push_back(var);
  }
  return wanted;
}

std::set<std::string> NamesIn(const SettingsFile& file, const std::vector<std::string>& asked) {
  std::vector<std::string> names;
  names.reserve(file.values.size());
  for (const SavedValue& value : file.values) {
    names.push_back(value.name);
  }
  std::set<std::string> meant;
  for (const std::string& name : asked) {
    meant.insert(names[MatchName(names, name, "variable of the file")]);
  }
  return meant;
}

}  // namespace

ExitCode RunSet(Context& context) {
  LidarLink link(context);
  link.NeedPages("set");
  std::vector<const VarInfo*> vars;
  const SettingsFile wanted = WantedBy(context.arguments.names, *link.model(), &vars);
  ApplyWish wish;
  wish.out_of_range = context.arguments.force;
  for (const VarInfo* var : vars) {
    wish.only.insert(var->var_name);
  }
  link.Connect();
  const ApplyPlan plan = MakePlan(context, link, ReadWhole(context, link), wanted, wish);
  const ConfigParser& table = *link.model()->table;
  CheckPlan(plan, {{"values", ValueObjects(table, vars)}});
  if (context.arguments.dry_run) {
    for (const ApplyResult& result : Foretell(plan).results) {
      context.output.Line(LineOf(result));
    }
    context.output.Object({{"values", ValueObjects(table, vars)}});
    return ExitCode::kDone;
  }
  const ApplyReport report = Run(context, link, plan);
  QJsonArray values = ValueObjects(table, vars);
  for (const ApplyResult& done : report.results) {
    context.output.Line(LineOf(done));
  }
  AddOutcomes(report, &values);
  const QJsonObject result{{"values", values}};
  CheckReport(context, report, result);
  context.output.Object(result);
  return ExitCode::kDone;
}

ExitCode RunApply(Context& context) {
  const Arguments& arguments = context.arguments;
  const SettingsFile wanted = LoadFile(arguments.path);
  ApplyWish wish;
  wish.with_network = arguments.with_network;
  wish.only = NamesIn(wanted, arguments.names);
  LidarLink link(context);
  link.NeedPages("apply");
  link.Connect();
  const SettingsFile present = ReadWhole(context, link);
  const ApplyPlan plan = MakePlan(context, link, present, wanted, wish);
  const bool is_dry = arguments.dry_run || !plan.may_run();
  if (!is_dry) {
    KeepSnapshot(context, present, SnapshotReason::kApply);
  }
  const ApplyReport report = is_dry ? Foretell(plan) : Run(context, link, plan);
  QJsonArray results;
  for (const ApplyResult& result : report.results) {
    if (plan.may_run() || result.outcome == Outcome::kRefused) {
      context.output.Line(LineOf(result));
    }
    results.append(ObjectOf(result));
  }
  const QJsonObject object{{"results", results}, {"dry_run", arguments.dry_run}};
  CheckPlan(plan, object);
  if (!is_dry) {
    CheckReport(context, report, object);
  }
  context.output.Object(object);
  return ExitCode::kDone;
}
