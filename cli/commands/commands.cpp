#include "commands/commands.h"

Command FindCommand(const std::string& name) {
  constexpr std::pair<const char*, Command> commands[] = {
      {"models", RunModels},
      {"info", RunInfo},
      {"get", RunGet},
      {"set", RunSet},
      {"save", RunSave},
      {"diff", RunDiff},
      {"apply", RunApply},
      {"send", RunSend},
      {"restart", RunRestart},
      {"reset", RunReset},
      {"upgrade", RunUpgrade},
      {"download", RunDownload},
      {"log", RunLog},
      {"calibration", RunCalibration},
      {"monitor", RunMonitor},
      {"watch-udp", RunWatchUdp},
      {"check-tables", RunCheckTables},
      {"dissector", RunDissector},
      {"bundle", RunBundle},
  };
  for (const auto& [called, command] : commands) {
    if (name == called) {
      return command;
    }
  }
  return nullptr;
}
