#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "variables/var_info.h"

/// Turns the text of a value into the bytes that the device holds, for every value type and with
/// every value in reach; the texts are those that a client shows.
///
/// Numbers are big-endian and divided by the variable's read coefficient. "string" is
/// padded with zeros. "raw" takes hexadecimal pairs ("0x" and blanks allowed), else the text's own
/// bytes. "DT" takes seconds or "1 h 0 min 1 s". "IP" and "MAC" take their usual notations. The
/// variables named "HWVER" and "SWVER_YMD" take nine or twelve characters and then numbers with
/// dots between them, and fill 16 bytes. An empty text gives zeros.
/// Returns false with a sentence in *error when the text does not fit type or length; *bytes then
///         holds zeros. Otherwise *bytes has exactly the variable's length.
bool EncodeValueText(const VarInfo& var, const std::string& text, std::vector<uint8_t>* bytes,
                     std::string* error);
