// The tables that are installed, as a dissector for Wireshark.

#include <QFile>
#include <algorithm>
#include <set>
#include <sstream>

#include "commands/commands.h"
#include "dissector/dissector_tables.h"
#include "lidar_link.h"
#include "names.h"
#include "variables/monitor_tables.h"

namespace {

/// The code of the dissector, in the order in which Lua has to read it: a file uses what stands in
/// those before it.
constexpr const char* kCode[] = {
    "checksums", "frame_forms", "frames",  "texts",    "decimals", "values",    "device_commands",
    "commands",  "fields",      "pairing", "payloads", "tree",     "dissector", "registration"};

/// Tells what is wrong with tables, each thing once: what is wrong with a table of all models is
/// found with each of them.
class FaultTeller {
 public:
  explicit FaultTeller(ConsoleReport& report) : report_(report) {}
  void Tell(const TableFaults& faults) {
    for (const TableFault& fault : faults) {
      if (told_.insert(fault.text).second) {
        report_.LogLine(fault.text, LogType::kWarning);
      }
    }
  }

 private:
  ConsoleReport& report_;
  std::set<std::string> told_;
};

DissectedModel Load(const ConfigFolder& config, const std::string& name, FaultTeller& faults) {
  DissectedModel loaded{LoadLidarModel(config, name), {}};
  faults.Tell(loaded.model->faults);
  for (const std::string& version : ListMonitorVersions(config, name)) {
    TableFaults found;
    if (auto monitor = WithMonitorVersion(*loaded.model, version, &found)) {
      loaded.monitors.push_back(std::move(monitor));
    }
    faults.Tell(found);
  }
  return loaded;
}

/// What is captured is mostly a network.
std::string UsualModel(const std::vector<DissectedModel>& models) {
  const auto usual = std::find_if(models.begin(), models.end(), [](const DissectedModel& each) {
    return each.model->connect_type == kNetworkLink;
  });
  return (usual == models.end() ? models.front() : *usual).model->name;
}

void AppendCode(std::ostream& out) {
  for (const char* part : kCode) {
    QFile file(QStringLiteral(":/dissector/") + part + ".lua");
    file.open(QIODevice::ReadOnly);
    out << '\n' << file.readAll().toStdString();
  }
}

}  // namespace

ExitCode RunDissector(Context& context) {
  const std::vector<std::string> names = InstalledModels(context);
  const std::string& wanted = context.arguments.model;
  std::string chosen = wanted.empty() ? "" : names[MatchName(names, wanted, "model")];
  FaultTeller faults(context.report);
  std::vector<DissectedModel> models;
  models.reserve(names.size());
  for (const std::string& name : names) {
    models.push_back(Load(context.config, name, faults));
  }
  if (chosen.empty()) {
    chosen = UsualModel(models);
  }
  std::ostringstream lua;
  lua << "-- A dissector for Wireshark: what Tevron and a lidar say to each other.\n"
         "-- Written by \"tevronctl dissector\" of Tevron " TEVRON_VERSION
         " from the tables that were installed there.\n"
         "-- Belongs into the folder of personal Lua plugins: Help, About Wireshark, Folders.\n\n";
  WriteDissectorTables(models, chosen, lua);
  AppendCode(lua);
  if (context.output.json()) {
    context.output.Object({{"lua", QString::fromStdString(lua.str())}});
  } else {
    context.output.Bytes(QByteArray::fromStdString(lua.str()));
  }
  return ExitCode::kDone;
}
