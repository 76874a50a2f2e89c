#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

namespace {

constexpr uint16_t kDefaultPort = 9347;

std::string FaultHelp() {
  std::ostringstream text;
  text << "Fault modes (--fault NAME[=ARG][@CMD][#TIMES], repeatable):\n";
  for (const FaultMode& mode : FaultModes()) {
    std::string name = mode.name;
    if (*mode.argument != '\0') {
      name += std::string("=") + mode.argument;
    }
    text << "  " << name << std::string(22 - std::min<size_t>(name.size(), 21), ' ')
         << mode.sentence << '\n';
  }
  text << "@CMD limits a fault to one command code, #TIMES to that many times, #FROM-TO to "
          "those\n(not silent-after).\n\n"
          "Examples:\n"
          "  virtual_lidar                                  an Orca on 127.0.0.1:9347\n"
          "  virtual_lidar --model Kiva-CMX                 names the serial port to connect to\n"
          "  virtual_lidar --port 0 --fault 'drop@0x12#1'   loses the answer to its first write\n"
          "  virtual_lidar --fault late=700@0x11            answers when nobody waits any more\n"
          "  virtual_lidar --set 'Spin Rate=1200' --dump state.json\n"
          "  virtual_lidar --hardware B2 --seed 7           measures, and the same on every run\n"
          "  virtual_lidar --check-tables Heron             what is wrong with the tables of it\n"
          "  virtual_lidar --model Orca --make-firmware 2.8.0 orca.patch\n\n"
          "Signals: SIGUSR1 writes the dump file anew; SIGHUP reads the fault file again, where "
          "there is\n"
          "one; SIGTERM and SIGINT end at once.";
  return text.str();
}

std::string CheckFault(std::string& text) {
  FaultOrder order;
  std::string error;
  return ParseFaultOrder(text, &order, &error) ? "" : error;
}

std::string CheckTarget(std::string& text) {
  PointCloudTarget target;
  std::string error;
  return ParsePointCloudTarget(text, &target, &error) ? "" : error;
}

std::string CheckPreset(std::string& text) {
  return text.find('=') != std::string::npos && text[0] != '='
             ? ""
             : "\"" + text + "\" is not of the form NAME=VALUE";
}

// What the command line says, before it is made sense of together.
struct CommandLine {
  std::string config;
  std::string udp;
  uint32_t uart_points = 0;
  std::vector<std::string> faults;
  std::vector<std::string> presets;
  uint16_t port = kDefaultPort;
  bool port_given = false;
  bool serial = false;
  bool no_auth = false;
  std::vector<std::string> firmware;
  size_t firmware_kib = Options().firmware_size / 1024;
  std::vector<std::string> tls;
  std::string tls_ca;
  uint32_t line_baud = 0;
  int line_latency_ms = 0;
  int restart_ms = static_cast<int>(ServerSetup().restart_time.count());
};

void DeclareWhereToAnswer(CLI::App* app, CommandLine* line, Options* options) {
  app->option_defaults()->group("Which device, and where it answers");
  app->add_option("--model", options->model,
                  "Model, by the name of its table; another name lists the models")
      ->type_name("MODEL")
      ->capture_default_str();
  app->add_option("--hardware", options->hardware,
                  "Hardware version, by the name of its monitor table; the first unless given")
      ->type_name("VERSION");
  app->add_option("--config", line->config,
                  "Folder of the tables; Config beside the bin/ of this program, and the user's "
                  "own, unless given")
      ->type_name("DIR");
  app->add_option("--port", line->port,
                  "TCP port on 127.0.0.1; 0, or 9347 in use, lets the system pick")
      ->type_name("N")
      ->capture_default_str();
  app->add_option("--protocol", options->server.protocol,
                  "Version of the CMX frames over TCP, 1 or 2")
      ->type_name("N")
      ->check(CLI::Range(1, 2).description(""))
      ->capture_default_str();
  app->add_flag("--serial", line->serial,
                "Answer on a pseudo-terminal, as serial models do anyway; with --port, on both");
  app->add_option("--line-rate", line->line_baud,
                  "Let bytes over a serial line no faster than this, in bit/s and ten bits a byte")
      ->type_name("BAUD")
      ->check(CLI::Range(300, 12500000).description(""));
  app->add_option("--line-latency", line->line_latency_ms,
                  "Let bytes over a serial line arrive so much later, each way")
      ->type_name("MS")
      ->check(CLI::Range(0, 1000).description(""));
  app->add_option("--udp", line->udp, "Send a point cloud of 1,200-byte packets to IP:PORT[@RATE]")
      ->type_name("IP:PORT[@RATE]")
      ->check(CLI::Validator(CheckTarget, ""));
  app->add_option("--uart-points", line->uart_points,
                  "Send it over the UART of a pair of ports, so many packets a second")
      ->type_name("RATE")
      ->check(CLI::Range(uint32_t{1}, PointCloudTarget::kMaxRate).description(""));
}

void DeclareHowToBehave(CLI::App* app, CommandLine* line, Options* options) {
  app->option_defaults()->group("What it holds and how it behaves");
  app->add_option("--set", line->presets,
                  "Give a variable another value to start with, by name or id")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false)
      ->check(CLI::Validator(CheckPreset, ""));
  app->add_option("--seed", options->seed,
                  "How the values of the monitor page move; 0 lets them stand still")
      ->type_name("N")
      ->capture_default_str();
  app->add_option("--dump", options->server.dump_file,
                  "Keep this file at what the device holds: JSON, rewritten after every change")
      ->type_name("FILE");
  app->add_option("--log-size", options->log_size, "Bytes of each log that can be downloaded")
      ->type_name("BYTES")
      ->check(CLI::Range(uint32_t{0}, LogStore::kMaxSize).description(""))
      ->capture_default_str();
  app->add_option("--restart-time", line->restart_ms, "How long a restart takes, in ms")
      ->type_name("MS")
      ->check(CLI::Range(0, 600000).description(""))
      ->capture_default_str();
  app->add_flag("--no-auth", line->no_auth,
                "Tell clients that no authentication is required, whatever the table says");
  app->add_option("--fault", line->faults, "Misbehave on purpose; see below")
      ->type_name("FAULT")
      ->allow_extra_args(false)
      ->check(CLI::Validator(CheckFault, ""));
  app->add_option("--fault-file", options->fault_file,
                  "More faults, one a line; read at the start and again on SIGHUP")
      ->type_name("FILE");
  app->add_option("--check-tables", options->checked_model,
                  "Check the tables of every model, or of this one (also that of --model), list "
                  "what is wrong, and end (1: there are faults)")
      ->type_name("[MODEL]")
      ->expected(0, 1);
  app->add_flag("--list-models", options->list_models,
                "Tell of each model its name, how it is reached, its kind and its table, and end");
}

void DeclareTls(CLI::App* app, CommandLine* line, Options* options) {
  app->option_defaults()->group("TLS on every TCP link");
  auto* tls = app->add_option("--tls", line->tls,
                              "Speak TLS with this certificate and its key, as PEM files")
                  ->type_name("CERT KEY")
                  ->expected(2);
  app->add_option("--tls-ca", line->tls_ca,
                  "Want a certificate of each client, by a CA in this PEM file")
      ->type_name("CA")
      ->needs(tls);
  app->add_option("--tls-make", options->tls_folder,
                  "Make such files to try it with in this folder, fresh ones, and end")
      ->type_name("FOLDER");
}

void DeclareFirmware(CLI::App* app, CommandLine* line) {
  app->option_defaults()->group("Firmware to try an upgrade with");
  app->add_option("--make-firmware", line->firmware,
                  "Write a firmware file of this version for the model, and end")
      ->type_name("VERSION FILE")
      ->expected(2);
  app->add_option("--firmware-size", line->firmware_kib, "Size of each image in it, in KiB")
      ->type_name("KIB")
      ->check(CLI::Range(1, 65536).description(""))
      ->capture_default_str();
}

// The texts have passed their checks while they were read.
void MakeSense(const CommandLine& line, Options* options) {
  std::string error;
  if (!line.config.empty()) {
    options->config = ConfigFolder(line.config);
  }
  options->features = LoadFeatures(options->config, options->model, &options->feature_faults);
  options->auth_required = !line.no_auth;
  for (const std::string& text : line.faults) {
    ParseFaultOrder(text, &options->faults.emplace_back(), &error);
  }
  for (const std::string& text : line.presets) {
    const size_t equals = text.find('=');
    options->presets.emplace_back(text.substr(0, equals), text.substr(equals + 1));
  }
  if (line.firmware.size() == 2) {
    options->make_firmware = true;
    options->firmware_version = line.firmware[0];
    options->firmware_file = line.firmware[1];
  }
  options->firmware_size = line.firmware_kib * 1024;
  ServerSetup& server = options->server;
  server.restart_time = std::chrono::milliseconds(line.restart_ms);
  server.line_speed = {line.line_baud, std::chrono::milliseconds(line.line_latency_ms)};
  const ConnectType connect = options->features.connect_type;
  const bool serial = line.serial || connect != kNetworkLink;
  if (serial) {
    server.serial =
        connect == kSerialPair ? ServerSetup::Serial::kPair : ServerSetup::Serial::kOneLine;
  }
  if (!serial || line.port_given) {
    server.tcp_port = line.port;
    server.other_port_will_do = !line.port_given;
  }
  if (line.tls.size() == 2) {
    server.tls = {line.tls_ca, line.tls[0], line.tls[1], ""};
  }
  if (server.tls && !server.tcp_port) {
    throw CLI::ValidationError("--tls", options->model +
                                            " is reached over a serial line; --port has it answer "
                                            "over TCP as well");
  }
  server.uart_points_per_second = line.uart_points;
  if (line.uart_points != 0 && server.serial != ServerSetup::Serial::kPair) {
    throw CLI::ValidationError("--uart-points",
                               options->model + " has no pair of serial ports, such as Lumo has");
  }
  if (!line.udp.empty()) {
    ParsePointCloudTarget(line.udp, &server.point_cloud.emplace(), &error);
  }
}

}  // namespace

std::optional<Options> ParseOptions(int argc, char** argv, int* exit_code) {
  Options options;
  CommandLine line;
  CLI::App app(
      "A lidar in software: answers on the real wire as a device of the chosen model does, over "
      "TCP\n"
      "or a serial port that it makes, as the model is reached. It prints where, then a line for\n"
      "each request.");
  app.name("virtual_lidar");
  app.footer(FaultHelp());
  app.set_help_flag("-h,--help", "Print this and end");
  app.get_formatter()->column_width(28);
  DeclareWhereToAnswer(&app, &line, &options);
  DeclareHowToBehave(&app, &line, &options);
  DeclareTls(&app, &line, &options);
  DeclareFirmware(&app, &line);
  try {
    app.parse(argc, argv);
    line.port_given = app.count("--port") > 0;
    options.check_tables = app.count("--check-tables") > 0;
    if (options.checked_model.empty() && app.count("--model") > 0) {
      options.checked_model = options.model;
    }
    MakeSense(line, &options);
  } catch (const CLI::ParseError& error) {
    *exit_code = app.exit(error);
    return std::nullopt;
  }
  return options;
}
