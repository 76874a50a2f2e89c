#include <algorithm>

#include "commands/commands.h"
#include "lidar_settings.h"
#include "values.h"

namespace {

/// Values under the names of their pages, where there are several.
void PrintLines(const ConfigParser& table, const std::vector<const VarInfo*>& vars,
                Output& output) {
  const bool has_pages = std::any_of(vars.begin(), vars.end(), [&vars](const VarInfo* var) {
    return var->function_module.str() != vars.front()->function_module.str();
  });
  std::string page;
  for (const VarInfo* var : vars) {
    if (has_pages && (var == vars.front() || var->function_module.str() != page)) {
      page = var->function_module.str();
      output.Line("[" + page + "]");
    }
    output.Line(ValueLine(*var, table.ValueOf(*var)));
  }
}

}  // namespace

ExitCode RunGet(Context& context) {
  LidarLink link(context);
  link.NeedPages("get");
  link.Connect();
  link.TakeMonitorVersion();
  const std::shared_ptr<LidarModel> model = link.model();
  const std::vector<const VarInfo*> vars =
      NamedVariables(*model, ReadableVariables(*model->table), context.arguments.names);
  const ManyRead read = ReadMany(SettingsOf(context, link), vars, WatchOf(context, "Reading"));
  context.report.EndProgress();
  context.interrupt.ThrowIfRaised();
  PrintLines(*model->table, vars, context.output);
  const QJsonObject result{{"values", ValueObjects(*model->table, vars)}};
  if (!read.failed.empty()) {
    throw Failure(read.lost ? ExitCode::kBrokenOff : ExitCode::kNo,
                  std::to_string(read.failed.size()) + " of " + std::to_string(vars.size()) +
                      " values could not be read: " + read.failed.begin()->second)
        .With(result);
  }
  context.output.Object(result);
  return ExitCode::kDone;
}
