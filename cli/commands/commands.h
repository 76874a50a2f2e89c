#pragma once

#include "context.h"
#include "failure.h"

// The commands. Each returns how it ended, or throws a Failure.

using Command = ExitCode (*)(Context& context);

/// Null for a name that no command has.
Command FindCommand(const std::string& name);

ExitCode RunModels(Context& context);
ExitCode RunInfo(Context& context);
ExitCode RunGet(Context& context);
ExitCode RunSet(Context& context);
ExitCode RunSave(Context& context);
ExitCode RunDiff(Context& context);
ExitCode RunApply(Context& context);
ExitCode RunSend(Context& context);
ExitCode RunRestart(Context& context);
ExitCode RunReset(Context& context);
ExitCode RunUpgrade(Context& context);
ExitCode RunDownload(Context& context);
ExitCode RunLog(Context& context);
ExitCode RunCalibration(Context& context);
ExitCode RunMonitor(Context& context);
ExitCode RunWatchUdp(Context& context);
ExitCode RunCheckTables(Context& context);
ExitCode RunDissector(Context& context);
ExitCode RunBundle(Context& context);
