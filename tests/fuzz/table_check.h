#pragma once

#include "variables/config_parser.h"
#include "variables/pages.h"

/// Requires of a table that was loaded, whatever it was made of, what its headers promise; then
/// reads every variable of it as zeros, edits and writes it.
void CheckLoadedTable(ConfigParser& table);
