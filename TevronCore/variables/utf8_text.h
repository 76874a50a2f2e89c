#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Bytes at the start of `text` that are UTF-8: all of it when nothing is wrong.
size_t Utf8PrefixOf(std::string_view text);

/// The text with a replacement character (U+FFFD) for every byte that belongs to no character.
/// Adds to *lines the 1-based numbers of the lines that had one, of the first `most_lines` of them.
std::string Utf8Of(std::string_view text, size_t most_lines, std::vector<size_t>* lines);
