#pragma once

#include <string>

#include "support_bundle/clean_text.h"

/// The SHA-256 of every file below the folder as "sha256sum" writes them, by name; those of the
/// user's own tables by their whole paths. Key files, and whatever holds a key, are told of
/// without: whoever knows how short a key is could guess it.
std::string TableSums(const ConfigFolder& config, const TextCleaner& cleaner);
