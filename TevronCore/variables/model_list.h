#pragma once

#include <string>
#include <vector>

/// The models that can be chosen: base names of the files in `folder` that end in ".csv", sorted.
/// Sub-folders are not searched. Empty when the folder cannot be read.
std::vector<std::string> ListModels(const std::string& folder);
