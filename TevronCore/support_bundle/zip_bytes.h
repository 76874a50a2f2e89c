#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// One file of an archive.
struct ZipMember {
  std::string name;  ///< plain ASCII
  std::string bytes;
};

/// The bytes of a .zip with these files, dated now, and nothing of who wrote it. Throws
/// std::runtime_error when the library fails.
std::vector<uint8_t> ZipBytes(const std::vector<ZipMember>& members);
