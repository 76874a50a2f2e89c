#pragma once

#include <string>
#include <vector>

/// The place in `names` of the one that `text` means: the whole name, else the one name that begins
/// so without regard to case (a whole one goes before a longer one). `what` says what they are, as
/// "variable". Throws a Failure that lists the candidates when there is not exactly one.
size_t MatchName(const std::vector<std::string>& names, const std::string& text, const char* what);
