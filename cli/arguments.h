#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

/// What the command line says. Texts are as they were typed; what stands in no option of the
/// command is as here.
struct Arguments {
  std::string command;

  bool json = false;
  bool quiet = false;
  bool verbose = false;
  std::string config;  ///< empty: of the program's own install root
  std::optional<double> timeout_s;

  // The lidar.
  std::string model;
  std::string host;    ///< "ADDRESS" or "ADDRESS:PORT"; empty without one
  std::string serial;  ///< "PORT" or "PORT,PORT"; empty without one
  int baud = 0;        ///< 0: what is usual
  std::string host_port;
  std::optional<std::string> tls_pin;

  // The commands.
  std::vector<std::string> names;  ///< names, "NAME=VALUE" of set, bytes of send
  std::string name;                ///< of a download; the code of send
  std::string path;                ///< file or folder
  std::string other_path;          ///< second file of diff
  bool dry_run = false;
  bool force = false;
  bool with_network = false;
  bool yes = false;
  bool no_wait = false;
  double interval_s = 1;
  std::optional<double> duration_s;
  int udp_port = 2368;
};

/// Reads the command line; prints help itself. Nothing when the process is to end now, with
/// *exit_code; a fault in the command line is thrown as a Failure.
std::optional<Arguments> ParseArguments(int argc, char** argv, int* exit_code);

/// Whether the command line wants JSON, however wrong the rest of it is.
bool WantsJson(int argc, char** argv);
