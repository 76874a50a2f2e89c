#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "device/firmware_image.h"
#include "variables/config_parser.h"
#include "variables/model_traits.h"

/// A firmware file for a model: of the family kKiva an upgrade package with every component, of any
/// other one image of the application. `image_size` is the size of each image, at least
/// kImageHeaderSize; that of the parameters is never above 16 KiB.
std::vector<uint8_t> MakeFirmware(const std::string& model, SerialFamily family,
                                  const FirmwareVersion& version, size_t image_size);

/// Writes such a file, built today. `table` is the model's.
/// Returns false with a sentence in *error when the version is none, the model has no firmware to
///         show, or the file cannot be written.
bool WriteFirmwareFile(const ConfigParser& table, const std::string& model, SerialFamily family,
                       const std::string& version, size_t image_size, const std::string& path,
                       std::string* error);
