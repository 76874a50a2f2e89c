#include <QString>

#include "commands/commands.h"
#include "files/whole_file.h"
#include "lidar_link.h"
#include "monitor/monitor_file.h"
#include "pages/page_reader.h"
#include "values.h"

namespace {

using Clock = TaskQueue::Clock;

/// The recording beside the results, in the format of the window's.
class Recording {
 public:
  Recording(const std::string& path, const std::vector<const VarInfo*>& vars) : path_(path) {
    if (path.empty()) {
      return;
    }
    std::vector<std::string> captions;
    captions.reserve(vars.size());
    for (const VarInfo* var : vars) {
      captions.push_back(var->var_name + UnitSuffix(*var));
    }
    Expect(WriteWholeFile(path, RecordLine(kRecordFirstColumn, captions)).reason);
  }

  void Write(const std::vector<std::string>& cells) {
    if (!path_.empty()) {
      Expect(AppendToFile(path_, RecordLine(RecordTime(), cells)));
    }
  }

 private:
  void Expect(const std::string& problem) const {
    if (!problem.empty()) {
      throw Failure(ExitCode::kUsage, PathText(path_) + ": " + problem);
    }
  }

  const std::string path_;
};

/// What is read again and again.
class Watch {
 public:
  Watch(Context& context, LidarLink& link)
      : context_(context),
        link_(link),
        model_(link.model()),
        vars_(Chosen(*model_, context.arguments.names)),
        recording_(context.arguments.path, vars_) {}

  void ReadOnce() {
    LidarSession& session = link_.session();
    const Unread unread = PageReader(link_.sender(), *model_->table, session.state(),
                                     session.read_failures(), context_.report)
                              .Read(vars_, "tevronctl");
    if (unread.failed.size() == vars_.size() && !unread.answered) {
      throw Failure(ExitCode::kBrokenOff, "the lidar was lost after " + std::to_string(lines_) +
                                              (lines_ == 1 ? " line: " : " lines: ") +
                                              unread.failed.begin()->second);
    }
    Tell(unread);
    ++lines_;
  }

 private:
  static std::vector<const VarInfo*> Chosen(const LidarModel& model,
                                            const std::vector<std::string>& names) {
    const int page = model.pages.monitor_page();
    if (names.empty() && page < 0) {
      throw Failure(ExitCode::kUsage, model.name + " has no monitor page; name what to read");
    }
    std::vector<std::string> wanted = names;
    if (names.empty()) {
      wanted = {model.pages.pages()[static_cast<size_t>(page)].name};
    }
    return NamedVariables(model, ReadableVariables(*model.table), wanted);
  }

  void Tell(const Unread& unread) {
    const QString time = TimeNowIso();
    std::string line = time.toStdString();
    std::vector<std::string> cells;
    QJsonArray objects;
    for (const VarInfo* var : vars_) {
      ConfigParser::Value value = model_->table->ValueOf(*var);
      // An earlier reading is none of this line.
      if (const auto failure = unread.failed.find(var); failure != unread.failed.end()) {
        value = {};
        value.read_failure = failure->second;
      }
      line += "  " + ValueLine(*var, value);
      cells.push_back(value.text);
      objects.append(ValueObject(*var, value));
    }
    context_.output.Line(line);
    context_.output.Object({{"time", time}, {"values", objects}});
    recording_.Write(cells);
  }

  Context& context_;
  LidarLink& link_;
  const std::shared_ptr<LidarModel> model_;
  const std::vector<const VarInfo*> vars_;
  Recording recording_;
  size_t lines_ = 0;
};

}  // namespace

ExitCode RunMonitor(Context& context) {
  LidarLink link(context);
  link.NeedPages("monitor");
  link.Connect();
  link.TakeMonitorVersion();
  Watch watch(context, link);
  const auto seconds = [](double value) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(value));
  };
  const Clock::time_point begin = Clock::now();
  const auto& duration = context.arguments.duration_s;
  const Clock::time_point end = duration ? begin + seconds(*duration) : Clock::time_point::max();
  for (Clock::time_point next = begin; next <= end;) {
    watch.ReadOnce();
    // Lines that were missed are left out, not made up for.
    while (next <= Clock::now()) {
      next += seconds(context.arguments.interval_s);
    }
    if (next > end) {
      break;
    }
    link.SleepUntil(next);
  }
  return ExitCode::kDone;
}
