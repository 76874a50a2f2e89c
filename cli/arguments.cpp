#include "arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>

#include "failure.h"
#include "files/whole_file.h"
#include "shell_help.h"
#include "variables/utf8_text.h"

namespace {

// What is shown below the help of the program, and of each command.
constexpr char kFooter[] =
    "Exit codes: 0 done; 1 the lidar or the comparison said no; 2 wrong usage; 3 no connection;\n"
    "4 broken off in the middle, what was done is listed; 130 interrupted.\n\n"
    "Examples:\n"
    "  tevronctl models\n"
    "  tevronctl info --model Orca --host 192.168.1.201\n"
    "  tevronctl set \"Spin Rate=1200\" --model Orca --host 192.168.1.201\n"
    "  tevronctl save orca.tevron.json --model Orca --host 192.168.1.201\n"
    "  tevronctl apply orca.tevron.json --dry-run --model Orca --host 192.168.1.202\n"
    "  tevronctl get Scan --model Orca --host 192.168.1.201\n"
    "  tevronctl --json get \"Spin Rate\" --model Orca --host 192.168.1.201 | jq -r "
    "'.values[0].text'\n"
    "  tevronctl send 0x01 --model Lumo-CMX --serial /dev/ttyUSB0\n"
    "  tevronctl --timeout 120 upgrade orca.patch --model Orca --host 192.168.1.201\n"
    "  tevronctl monitor --csv night.csv --duration 28800 --model Orca --host 192.168.1.201\n\n"
    "Results go to standard output, everything else to standard error. \"man tevronctl\" has more.";

constexpr char kNames[] =
    "\nNames match whole, or by a beginning that only one has, without regard to case.";

/// A command with the options that it alone has.
CLI::App* Declare(CLI::App& app, const char* name, const char* description,
                  const std::string& example) {
  CLI::App* const command = app.add_subcommand(name, description);
  command->set_help_flag("-h,--help", "Print this and end");
  command->set_help_all_flag("");
  command->footer("Example: tevronctl " + example);
  return command;
}

/// One that talks to a lidar; `$` in the example stands for one.
CLI::App* DeclareWithLidar(CLI::App& app, const char* name, const char* description,
                           std::string example, Arguments* arguments) {
  example.replace(example.find('$'), 1, "--model Orca --host 192.168.1.201");
  CLI::App* const command = Declare(app, name, description, example);
  command->option_defaults()->group("The lidar");
  command->add_option("--model", arguments->model, "Model, by the name of its table")
      ->type_name("MODEL")
      ->required();
  command
      ->add_option("--host", arguments->host,
                   "Where a network model is; the port is 9347 unless given")
      ->type_name("ADDRESS[:PORT]");
  command
      ->add_option("--serial", arguments->serial,
                   "Where a serial model is: its line, or RS-485 and UART of a pair")
      ->type_name("PORT[,PORT]");
  command
      ->add_option("--baud", arguments->baud,
                   "Rate of the line, 115200 unless given; of a pair that of the UART, 3000000")
      ->type_name("N")
      ->check(CLI::Range(300, 12500000).description(""));
  command
      ->add_option("--host-port", arguments->host_port,
                   "Port on this side, or ANY, for models that want one; the window's unless given")
      ->type_name("N");
  command
      ->add_option("--tls-pin", arguments->tls_pin,
                   "The one certificate to accept, of a model that is reached over TLS; those "
                   "trusted in the window unless given")
      ->type_name("SHA256");
  command->option_defaults()->group("Options");
  return command;
}

CLI::Option* AddText(CLI::App* command, const char* name, std::string* text,
                     const char* description) {
  return command->add_option(name, *text, description)->type_name("")->required();
}

void AddTexts(CLI::App* command, const char* name, std::vector<std::string>* texts,
              const char* description) {
  command->add_option(name, *texts, description)->type_name("");
}

CLI::Option* AddSeconds(CLI::App* command, const char* name, std::optional<double>* seconds,
                        double least, const char* description) {
  return command->add_option(name, *seconds, description)
      ->type_name("S")
      ->check(CLI::Range(least, 31536000.0).description(""));
}

void DeclareGlobal(CLI::App& app, Arguments* arguments) {
  app.add_flag("--json", arguments->json, "Print results as JSON: one object, or one a line");
  app.add_option("--config", arguments->config,
                 "Folder of the tables and keys; Config beside the bin/ of this program, and the "
                 "user's own, unless given")
      ->type_name("DIR")
      ->take_last();
  AddSeconds(&app, "--timeout", &arguments->timeout_s, 0.1,
             "Try so long to reach the lidar, and wait so long for its return from a restart; one "
             "try, and 60 s, unless given");
  app.add_flag("--quiet", arguments->quiet, "Say nothing but why a command fails");
  app.add_flag("--verbose", arguments->verbose,
               "Say everything, the bytes of each exchange among it");
}

void DeclareReading(CLI::App& app, Arguments* arguments) {
  Declare(app, "models", "The models of the tables, and how each is reached", "models");
  DeclareWithLidar(app, "info", "Who the lidar is, what it runs, since when, over which link",
                   "--json info $", arguments);
  auto* get = DeclareWithLidar(app, "get", "Values; all of them without a name",
                               std::string("get \"Spin Rate\" Network $") + kNames, arguments);
  AddTexts(get, "NAME", &arguments->names, "Variables, or pages for all on them");
  auto* set = DeclareWithLidar(
      app, "set", "Check values, write them, and read them back",
      std::string("set \"Spin Rate=1200\" \"Return Mode=Dual\" $") + kNames, arguments);
  set->add_option("NAME=VALUE", arguments->names, "Variables with their values")
      ->type_name("")
      ->required();
  set->add_flag("--force", arguments->force, "Also what is out of range, or would be rounded");
  set->add_flag("--dry-run", arguments->dry_run, "Check, and write nothing");
  auto* send = DeclareWithLidar(app, "send", "A raw command; its reply in hexadecimal",
                                "send 0x34 $", arguments);
  AddText(send, "CODE", &arguments->name, "Command in hexadecimal; more than a byte is a long one");
  AddTexts(send, "BYTE", &arguments->names, "Payload in hexadecimal");
}

void DeclareSettings(CLI::App& app, Arguments* arguments) {
  auto* save = DeclareWithLidar(app, "save", "Keep everything that the lidar holds as a file",
                                "save orca.tevron.json $", arguments);
  AddText(save, "FILE", &arguments->path, "Settings file; - is standard output");
  auto* diff = DeclareWithLidar(
      app, "diff", "Compare a settings file with the lidar, or with another; 1 when they differ",
      "diff orca.tevron.json $", arguments);
  AddText(diff, "FILE", &arguments->path, "Settings file");
  diff->add_option("OTHER", arguments->other_path, "A second one, in the place of the lidar")
      ->type_name("");
  diff->get_option("--model")->required(false);
  auto* apply = DeclareWithLidar(
      app, "apply", "Write the settings of a file: all but identity and network settings",
      std::string("apply orca.tevron.json --dry-run $") + kNames, arguments);
  AddText(apply, "FILE", &arguments->path, "Settings file");
  apply->add_flag("--dry-run", arguments->dry_run, "Say what would be written, and write nothing");
  apply->add_flag("--with-network", arguments->with_network, "The network settings, too, at last");
  apply->add_option("--only", arguments->names, "These variables alone")->type_name("NAME");
}

void DeclareMaintenance(CLI::App& app, Arguments* arguments) {
  auto* restart =
      DeclareWithLidar(app, "restart", "Restart the lidar, and wait until it answers again",
                       "--timeout 120 restart $", arguments);
  auto* reset = DeclareWithLidar(app, "reset",
                                 "Put every setting back to the factory's; wait as for a restart",
                                 "reset --yes $", arguments);
  reset->add_flag("--yes", arguments->yes, "Really");
  for (CLI::App* command : {restart, reset}) {
    command->add_flag("--no-wait", arguments->no_wait, "Do not wait for the lidar");
  }
  auto* upgrade = DeclareWithLidar(app, "upgrade",
                                   "Give the lidar another firmware; its version before and after",
                                   "upgrade orca.patch $", arguments);
  AddText(upgrade, "FILE", &arguments->path, "Firmware file");
  auto* download =
      DeclareWithLidar(app, "download", "Save a log, or whatever else the model's table offers",
                       std::string("download \"Event Log\" . $") + kNames, arguments);
  AddText(download, "NAME", &arguments->name, "What to save");
  AddText(download, "DIR", &arguments->path, "Folder for the file");
  auto* log =
      DeclareWithLidar(app, "log", "Save the operation log, a file a part", "log . $", arguments);
  AddText(log, "DIR", &arguments->path, "Folder for the files");
  auto* calibration = DeclareWithLidar(app, "calibration", "Save the calibration of a Lumo",
                                       "calibration c.bin $", arguments);
  calibration->footer(
      "Example: tevronctl calibration c.bin --model Lumo-CMX --serial /dev/ttyUSB0");
  AddText(calibration, "FILE", &arguments->path, "File, or a folder for it");
}

void DeclareWatching(CLI::App& app, Arguments* arguments) {
  auto* monitor = DeclareWithLidar(
      app, "monitor", "Values again and again; those of the monitor page without a name",
      std::string("monitor --duration 3600 --csv hour.csv $") + kNames, arguments);
  AddTexts(monitor, "NAME", &arguments->names, "Variables, or pages for all on them");
  monitor->add_option("--csv", arguments->path, "Record into this file, too, as the window does")
      ->type_name("FILE");
  auto* watch_udp = Declare(
      app, "watch-udp", "Point-cloud packets that arrive here: how many, how fast, from whom, lost",
      "watch-udp --duration 5");
  watch_udp->add_option("--port", arguments->udp_port, "UDP port")
      ->type_name("N")
      ->check(CLI::Range(1, 65535).description(""))
      ->capture_default_str();
  for (CLI::App* command : {monitor, watch_udp}) {
    command->add_option("--interval", arguments->interval_s, "Seconds from one line to the next")
        ->type_name("S")
        ->check(CLI::Range(0.05, 86400.0).description(""))
        ->capture_default_str();
    AddSeconds(command, "--duration", &arguments->duration_s, 0,
               "End after so long; with Ctrl+C unless given");
  }
  auto* check = Declare(app, "check-tables", "What is wrong with the tables, with file and line",
                        "check-tables --config ./Config");
  check->add_option("--model", arguments->model, "Check the tables of this model alone")
      ->type_name("MODEL");
  auto* dissector = Declare(app, "dissector", "The tables as a dissector for Wireshark",
                            "dissector --model Orca > tevron.lua");
  dissector
      ->add_option("--model", arguments->model,
                   "The model that it begins with; it knows all of them")
      ->type_name("MODEL");
}

void DeclareHelp(CLI::App& app, Arguments* arguments) {
  auto* bundle = DeclareWithLidar(
      app, "bundle", "Pack logs, versions and settings for whoever helps; no keys and no names",
      "bundle help.zip $", arguments);
  AddText(bundle, "FILE", &arguments->path, "The .zip to write");
  bundle->add_flag("--dry-run", arguments->dry_run, "List what it would hold, and write nothing");
  bundle->get_option("--model")->required(false);
}

void CheckExclusions(const Arguments& arguments) {
  const bool is_loud = arguments.quiet && arguments.verbose;
  if (is_loud || (!arguments.host.empty() && !arguments.serial.empty())) {
    throw Failure(ExitCode::kUsage, is_loud ? "--quiet and --verbose exclude each other"
                                            : "--host and --serial exclude each other");
  }
}

/// No result could tell the name of a file that is none in UTF-8.
void CheckEncoding(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (Utf8PrefixOf(argv[i]) != std::strlen(argv[i])) {
      throw Failure(ExitCode::kUsage, PathText(argv[i]) + ": this is not in UTF-8");
    }
  }
}

}  // namespace

bool WantsJson(int argc, char** argv) {
  return std::any_of(argv, argv + argc,
                     [](const char* text) { return std::strcmp(text, "--json") == 0; });
}

std::optional<Arguments> ParseArguments(int argc, char** argv, int* exit_code) {
  CheckEncoding(argc, argv);
  Arguments arguments;
  CLI::App app("The work of the window without the window: one command for one lidar.");
  app.name("tevronctl");
  app.footer(kFooter);
  app.set_help_flag("-h,--help", "Print this and end");
  app.set_help_all_flag("--help-all", "Print the help of every command and end");
  app.set_version_flag("--version", std::string("tevronctl ") + TEVRON_VERSION,
                       "Print the version and end");
  app.get_formatter()->column_width(30);
  app.require_subcommand(1);
  app.fallthrough();
  DeclareGlobal(app, &arguments);
  DeclareReading(app, &arguments);
  DeclareSettings(app, &arguments);
  DeclareMaintenance(app, &arguments);
  DeclareWatching(app, &arguments);
  DeclareHelp(app, &arguments);
  std::string shell_help;
  auto* help =
      Declare(app, "shell-help", "Completion for bash or zsh, or the manual page", "")->group("");
  AddText(help, "KIND", &shell_help, "bash, zsh or man");
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& ending) {
    *exit_code = app.exit(ending);
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    const std::vector<std::string> unknown = app.remaining();
    const bool is_command = unknown.empty() || !app.get_subcommands().empty();
    const std::string problem =
        is_command ? error.what() : "there is no command \"" + unknown.front() + "\"";
    throw Failure(ExitCode::kUsage, problem + "; see tevronctl --help");
  }
  CheckExclusions(arguments);
  if (app.got_subcommand(help)) {
    *exit_code =
        WriteShellHelp(app, shell_help, std::cout) ? 0 : static_cast<int>(ExitCode::kUsage);
    return std::nullopt;
  }
  arguments.command = app.get_subcommands().front()->get_name();
  return arguments;
}
