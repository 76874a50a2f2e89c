#pragma once

#include <string>

#include "CmxClient/stale_input.h"

// Features that the table "./Config/feature_config.csv" switches on per model. A row applies to the
// model whose name its "Model" cell holds; cells are compared without surrounding white space.

/// Whether the host-port field is offered: the model's "EnableCmxClientHostPortUi" is exactly "1".
/// False when the file cannot be read or has no row of the model. Throws std::runtime_error
/// "Can't find a column named " and the name when one of the two columns is missing.
bool IsHostPortUiEnabled(const std::string& table, const std::string& model);

/// How the model's client treats bytes that no command asked for: kAfterTrouble when the optional
/// column "StaleInputWait" says "trouble", kAlways in every other case. Never throws.
kavel::lidar::StaleInput StaleInputFor(const std::string& table, const std::string& model);
