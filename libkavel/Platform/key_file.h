#pragma once

#include <string>

namespace kavel::lidar {

/// What is wrong with the way a file with a key is kept, as a sentence for the user, or "" when it
/// is missing or when only its owner and group can read it. Reads none of it.
std::string KeyFileWarning(const std::string& path);

}  // namespace kavel::lidar
