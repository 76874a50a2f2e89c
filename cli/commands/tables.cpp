// What is said of the tables alone, without a lidar.

#include <QJsonArray>
#include <algorithm>
#include <iomanip>
#include <sstream>

#include "commands/commands.h"
#include "lidar_link.h"
#include "names.h"
#include "table_check/table_check.h"
#include "variables/feature_config.h"

namespace {

const char* OptionsOf(ConnectType connect_type) {
  switch (connect_type) {
    case kSerialPair:
      return "--serial RS485_PORT,UART_PORT [--baud N]";
    case kSerialCmx:
      return "--serial PORT [--baud N]";
    default:
      return "--host ADDRESS[:PORT]";
  }
}

}  // namespace

ExitCode RunModels(Context& context) {
  const std::vector<std::string> models = InstalledModels(context);
  size_t width = 0;
  for (const std::string& model : models) {
    width = std::max(width, model.size());
  }
  QJsonArray objects;
  for (const std::string& model : models) {
    TableFaults told_by_the_check;
    const ModelFeatures features = LoadFeatures(context.config, model, &told_by_the_check);
    std::string options = OptionsOf(features.connect_type);
    options += features.host_port_enabled ? " [--host-port N]" : "";
    options += features.link == NetworkLink::kTls ? " [--tls-pin SHA256]" : "";
    std::ostringstream line;
    line << std::left << std::setw(static_cast<int>(width) + 2) << model << std::setw(13)
         << TextOf(features.connect_type) << options;
    context.output.Line(line.str());
    objects.append(QJsonObject{
        {"name", QString::fromStdString(model)},
        {"reached", TextOf(features.connect_type)},
        {"kind", TextOf(features.family)},
        {"options", QString::fromStdString(options)},
        {"table", QString::fromStdString(AbsolutePath(context.config.TableOf(model)))}});
  }
  context.output.Object({{"models", objects}});
  return ExitCode::kDone;
}

ExitCode RunCheckTables(Context& context) {
  std::string model = context.arguments.model;
  if (!model.empty()) {
    const std::vector<std::string> models = context.config.Models();
    model = models.empty() ? model : models[MatchName(models, model, "model")];
  }
  const TableReport report = CheckTables(context.config, model);
  std::stringstream text;
  PrintReport(report, text);
  for (std::string line; std::getline(text, line);) {
    context.output.Line(line);
  }
  QJsonArray faults;
  QJsonArray warnings;
  for (const TableFault& finding : report.findings) {
    const bool is_fault = finding.severity == TableFault::Severity::kFault;
    (is_fault ? faults : warnings)
        .append(QJsonObject{{"file", QString::fromStdString(finding.file)},
                            {"line", static_cast<int>(finding.line)},
                            {"reason", QString::fromStdString(finding.Reason())}});
  }
  context.output.Object({{"faults", faults}, {"warnings", warnings}});
  return faults.isEmpty() ? ExitCode::kDone : ExitCode::kNo;
}
