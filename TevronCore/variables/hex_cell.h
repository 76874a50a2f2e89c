#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Reads hexadecimal digits two at a time, in either letter case; a single digit at the end is a
/// byte of its own. Nothing when any other character stands in the text.
std::optional<std::vector<uint8_t>> HexPairs(std::string_view text);

/// Bytes of a "GetCmdPayload" or "SetCmdPayload" cell: pairs of digits, with an optional prefix in
/// cells of four or more characters. Nothing when the cell does not convert.
std::optional<std::vector<uint8_t>> PayloadOfCell(std::string_view cell);
