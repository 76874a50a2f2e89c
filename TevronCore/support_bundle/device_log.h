#pragma once

#include <QString>
#include <cstdint>
#include <string>

/// Where the programs of this system log what they do with a lidar: "logs/device.log" in the user's
/// local data folder of the program (rotated, see Log/logger.h).
QString DeviceLogPath();

/// The newest `most_bytes` of that log in whole lines, oldest first, from the file before it where
/// it was rotated just now. "" when there is none; what is no plain file is not read.
std::string NewestLog(const QString& path, size_t most_bytes);

/// The last error in such a text: "2026-11-22 08:31:15.123: ...", or "".
std::string LastErrorIn(const std::string& log);
