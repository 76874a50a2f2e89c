#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "device/virtual_device.h"
#include "firmware_file.h"
#include "options.h"
#include "server/device_server.h"
#include "server/event_loop.h"
#include "table_check/table_check.h"
#include "tls_demo.h"
#include "variables/config_folder.h"
#include "variables/feature_config.h"
#include "variables/monitor_tables.h"
#include "variables/table_rules.h"

namespace {

constexpr int kUsageError = 2;

int Complain(const std::string& sentence) {
  std::cerr << "virtual_lidar: " << sentence << std::endl;
  return kUsageError;
}

// Whoever read the log may go, or never have been there: the device lives on.
void OutliveTheReader() {
  signal(SIGPIPE, SIG_IGN);
  // The next descriptor to be opened would take the place of a closed one, and get the log.
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(fd, F_GETFD) < 0) {
      open("/dev/null", O_RDWR);
    }
  }
}

// Signals arrive as events of the loop, so that none interrupts anything half done.
int OpenSignals(const Options& options) {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGTERM, SIGINT, SIGUSR1}) {
    sigaddset(&signals, signal);
  }
  // Without a file to read again it means what it always does: the terminal is gone.
  if (!options.fault_file.empty()) {
    sigaddset(&signals, SIGHUP);
  }
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  return signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
}

/// The faults of the command line and, behind them, those of the file. False with a sentence in
/// *error, and *faults as they were, when the file cannot be read.
bool GatherFaults(const Options& options, FaultBox* faults, std::string* error) {
  std::vector<FaultOrder> of_file;
  if (!options.fault_file.empty() && !LoadFaultOrders(options.fault_file, &of_file, error)) {
    return false;
  }
  std::vector<FaultOrder> all = options.faults;
  all.insert(all.end(), of_file.begin(), of_file.end());
  *faults = FaultBox(std::move(all));
  return true;
}

void ReadFaultsAgain(const Options& options, FaultBox* faults, const LineLog& log) {
  std::string error;
  log.Write(GatherFaults(options, faults, &error) ? "read the faults in " + options.fault_file
                                                  : error + "; the faults before stay in force");
}

void OnSignal(int fd, EventLoop* loop, DeviceServer* server,
              const std::function<void()>& on_hang_up) {
  signalfd_siginfo info = {};
  while (read(fd, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
    if (info.ssi_signo == SIGHUP) {
      on_hang_up();
      continue;
    }
    server->Dump();
    if (info.ssi_signo != SIGUSR1) {
      loop->Stop();
    }
  }
}

DeviceProfile MakeProfile(const Options& options) {
  DeviceProfile profile;
  profile.model = options.model;
  profile.family = options.features.family;
  profile.auth = AuthConfigOf(options.config, options.model);
  profile.auth_keys = LoadAuthKeys(options.config);
  profile.auth_required = options.auth_required;
  profile.seed = options.seed;
  profile.log_size = options.log_size;
  return profile;
}

// " Lumo, Orca, Osprey"
std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? " " : ", ") + name;
  }
  return text;
}

/// The model's table with the monitor table of *hardware on it; of the first version when that is
/// empty, which it then names. A model without such tables is as it is. *faults gets what is wrong
/// with them.
std::shared_ptr<const ConfigParser> LoadTables(const Options& options, std::string* hardware,
                                               TableFaults* faults) {
  const ConfigFolder& config = options.config;
  auto table = std::make_shared<const ConfigParser>(LoadModelTable(config, options.model));
  *faults = table->Faults();
  if (table->InTableOrder().empty() && !faults->empty()) {
    throw std::runtime_error(faults->front().text);
  }
  const std::vector<std::string> versions = ListMonitorVersions(config, options.model);
  if (hardware->empty() && !versions.empty()) {
    *hardware = versions.front();
  }
  if (hardware->empty()) {
    return table;
  }
  std::shared_ptr<const ConfigParser> with_monitor =
      WithMonitorTable(*table, MonitorTablePath(config, options.model, *hardware), faults);
  if (with_monitor == nullptr) {
    throw std::runtime_error("there is no monitor table of hardware \"" + *hardware +
                             "\" that can be used; there are" + Listed(versions));
  }
  return with_monitor;
}

int CheckAndPrint(const Options& options) {
  const TableReport report = CheckTables(options.config, options.checked_model);
  PrintReport(report, std::cout);
  return report.FaultCount() == 0 ? 0 : 1;
}

/// One line a model, for people and scripts: the parts stand behind tabs.
int PrintModels(const ConfigFolder& config) {
  for (const std::string& model : config.Models()) {
    TableFaults told_by_the_check;
    const ModelFeatures features = LoadFeatures(config, model, &told_by_the_check);
    std::cout << model << '\t' << TextOf(features.connect_type) << '\t' << TextOf(features.family)
              << '\t' << AbsolutePath(config.TableOf(model)) << '\n';
  }
  return 0;
}

int MakeTlsFiles(const std::string& folder) {
  std::string error;
  if (!WriteTlsFiles(folder, &error)) {
    return Complain(error);
  }
  std::cout << "made " << folder << ": the lidar's side is --tls " << folder << "/lidar.pem "
            << folder << "/lidar-key.pem, with --tls-ca " << folder
            << "/ca.pem for clients that have to show a certificate. A client knows the lidar by "
            << folder << "/ca.pem and shows " << folder << "/client.pem with " << folder
            << "/client-key.pem.\n";
  return 0;
}

int Serve(const Options& options, int signals) {
  const ConfigFolder& config = options.config;
  const std::vector<std::string> models = config.Models();
  if (models.empty()) {
    return Complain("there are no tables in " + config.path() +
                    "/varID; name their folder with --config");
  }
  if (std::find(models.begin(), models.end(), options.model) == models.end()) {
    return Complain("there is no model \"" + options.model + "\"; there are" + Listed(models));
  }
  DeviceProfile profile = MakeProfile(options);
  profile.hardware = options.hardware;
  TableFaults table_faults;
  const auto table = LoadTables(options, &profile.hardware, &table_faults);
  std::string error;
  if (options.make_firmware) {
    return WriteFirmwareFile(*table, options.model, options.features.family,
                             options.firmware_version, options.firmware_size, options.firmware_file,
                             &error)
               ? 0
               : Complain(error);
  }
  VirtualDevice device(table, std::move(profile));
  for (const auto& [name, text] : options.presets) {
    if (!device.Preset(name, text, &error)) {
      return Complain(error);
    }
  }
  const LineLog log(STDOUT_FILENO);
  log.Write(config.Describe(options.model));
  table_faults.insert(table_faults.end(), options.feature_faults.begin(),
                      options.feature_faults.end());
  for (const TableFault& fault : table_faults) {
    log.Write(fault.text);
  }
  FaultBox faults;
  if (!GatherFaults(options, &faults, &error)) {
    return Complain(error);
  }
  EventLoop loop;
  DeviceServer server(&loop, &device, &faults, &log, options.server);
  loop.Watch(signals, POLLIN, [&](short) {
    OnSignal(signals, &loop, &server, [&] { ReadFaultsAgain(options, &faults, log); });
  });
  if (!server.Start(&error)) {
    return Complain(error);
  }
  loop.Run();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  int exit_code = 0;
  const auto options = ParseOptions(argc, argv, &exit_code);
  if (!options) {
    return exit_code;
  }
  try {
    if (options->check_tables) {
      return CheckAndPrint(*options);
    }
    if (options->list_models) {
      return PrintModels(options->config);
    }
    if (!options->tls_folder.empty()) {
      return MakeTlsFiles(options->tls_folder);
    }
    OutliveTheReader();
    const int signals = OpenSignals(*options);
    return Serve(*options, signals);
  } catch (const AuthConfigError& error) {
    return Complain(error.text());
  } catch (const std::exception& error) {
    return Complain(error.what());
  }
}
