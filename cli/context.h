#pragma once

#include <string>

#include "arguments.h"
#include "console_report.h"
#include "interrupt.h"
#include "output.h"
#include "variables/config_folder.h"

/// What every command is handed.
struct Context {
  const Arguments& arguments;
  Output& output;
  ConsoleReport& report;
  Interrupt& interrupt;
  ConfigFolder config;
};
