#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <string>
#include <vector>

#include "session/lidar_model.h"
#include "variables/config_parser.h"

/// What a command may ask a lidar for: the variables of a settings file, and what its hardware
/// version measures.
std::vector<const VarInfo*> ReadableVariables(const ConfigParser& table);

/// Those of `from` that the names mean, in the order of the names and each once: variables, or
/// pages for all on them. All of them without a name. Throws a Failure, see MatchName.
std::vector<const VarInfo*> NamedVariables(const LidarModel& model,
                                           const std::vector<const VarInfo*>& from,
                                           const std::vector<std::string>& names);

/// A variable with its value as `get` and `set` tell it: text, hex and what they mean are null
/// while the lidar has not told them.
QJsonObject ValueObject(const VarInfo& var, const ConfigParser::Value& value);
QJsonArray ValueObjects(const ConfigParser& table, const std::vector<const VarInfo*>& vars);

/// "Spin Rate = 600 rpm"
std::string ValueLine(const VarInfo& var, const ConfigParser::Value& value);
