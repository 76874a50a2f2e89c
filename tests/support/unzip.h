#pragma once

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

using Files = std::map<std::string, std::string>;

/// What is packed in a zip file, by name.
inline Files Unzip(const std::string& path) {
  Files files;
  const std::unique_ptr<archive, decltype(&archive_read_free)> zip(archive_read_new(),
                                                                   &archive_read_free);
  archive_read_support_format_zip(zip.get());
  EXPECT_EQ(archive_read_open_filename(zip.get(), path.c_str(), 4096), ARCHIVE_OK);
  archive_entry* entry = nullptr;
  while (archive_read_next_header(zip.get(), &entry) == ARCHIVE_OK) {
    std::string& bytes = files[archive_entry_pathname(entry)];
    bytes.resize(static_cast<size_t>(archive_entry_size(entry)));
    EXPECT_EQ(archive_read_data(zip.get(), bytes.data(), bytes.size()),
              static_cast<la_ssize_t>(bytes.size()));
  }
  return files;
}
