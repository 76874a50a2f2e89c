#pragma once

#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "support/test_folder.h"

/// A disk of 64 KiB in place of /mnt, for this process and its children alone. Made before there
/// are threads, as the system wants it, and gone with them. Where it cannot be made, an empty
/// folder stands for it: the machine's own /mnt is never what is filled and emptied.
class SmallDisk {
 public:
  SmallDisk() : is_there_(Mount()), path_(is_there_ ? "/mnt" : instead_.path()) {}

  /// Not where this process may neither mount nor make a user namespace.
  bool is_there() const { return is_there_; }
  const std::string& path() const { return path_; }
  /// Takes the last of its room.
  void Fill() const {
    std::ofstream file(path() + "/filler", std::ios::binary);
    while (file << std::string(512, 'x') << std::flush) {
    }
  }
  void Empty() const {
    for (const auto& entry : std::filesystem::directory_iterator(path())) {
      std::filesystem::remove_all(entry.path());
    }
  }

 private:
  bool Mount() const {
    const auto same = [](unsigned id) {
      return std::to_string(id) + ' ' + std::to_string(id) + " 1";
    };
    const std::string user = same(geteuid());
    const std::string group = same(getegid());
    const bool is_root = unshare(CLONE_NEWNS) == 0;
    if (!is_root && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
      return false;
    }
    if (!is_root) {
      std::ofstream("/proc/self/setgroups") << "deny";
      std::ofstream("/proc/self/uid_map") << user;
      std::ofstream("/proc/self/gid_map") << group;
    }
    const bool mounted = mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                         mount("tmpfs", "/mnt", "tmpfs", 0, "size=64k,mode=0755") == 0;
    if (!is_root) {  // permissions count for a user as before
      __user_cap_header_struct version = {_LINUX_CAPABILITY_VERSION_3, 0};
      __user_cap_data_struct none[2] = {};
      syscall(SYS_capset, &version, none);
    }
    return mounted;
  }

  const TestFolder instead_;
  const bool is_there_;
  const std::string path_;
};

/// Root is another user while it lives, so that permissions count; so are its new children.
class AsNobody {
 public:
  explicit AsNobody(bool wanted) : is_on_(wanted && geteuid() == 0 && seteuid(65534) == 0) {}
  ~AsNobody() {
    if (is_on_ && seteuid(0) != 0) {
      std::abort();
    }
  }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;

 private:
  const bool is_on_;
};

/// Everything below a folder but the folders: links with where they lead, files with what they
/// hold.
inline std::map<std::string, std::string> Contents(const std::string& folder) {
  namespace fs = std::filesystem;
  std::map<std::string, std::string> found;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = entry.path().string();
    if (entry.is_symlink()) {
      found[name] = "-> " + fs::read_symlink(entry.path()).string();
    } else if (entry.is_regular_file()) {
      std::ifstream file(name, std::ios::binary);
      found[name] = {std::istreambuf_iterator<char>(file), {}};
    } else if (!entry.is_directory()) {
      found[name] = "special";
    }
  }
  return found;
}
