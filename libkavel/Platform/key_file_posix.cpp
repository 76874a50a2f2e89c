#include <filesystem>
#include <system_error>

#include "Platform/key_file.h"

namespace kavel::lidar {

std::string KeyFileWarning(const std::string& path) {
  using std::filesystem::perms;
  std::error_code error;
  const perms permissions = std::filesystem::status(path, error).permissions();
  if (error || (permissions & perms::others_read) == perms::none) {
    return "";
  }
  return "The key file " + path +
         " can be read by every user of this computer. Allow only its owner to read it (chmod "
         "600).";
}

}  // namespace kavel::lidar
