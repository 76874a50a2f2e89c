#pragma once

#include <string>

#include "device/virtual_device.h"

/// What the device holds, as a JSON text: "model", "up_time_s", "variables" (by name: "id", "text",
/// "hex"), "firmware" and, for serial models, "maintenance". The hex is that of a read at this
/// moment. The bytes of "Shared Secret Key" are left out; only their number is told.
std::string DumpState(const VirtualDevice& device);

/// Writes the dump to a file that always holds a whole one: a reader sees the state before or the
/// state after.
/// Returns false with a sentence in *error when the file cannot be written; what it held stays.
bool WriteDump(const VirtualDevice& device, const std::string& path, std::string* error);
