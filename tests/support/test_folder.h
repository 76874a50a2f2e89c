#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

/// A folder that goes with its object.
class TestFolder {
 public:
  /// Throws std::filesystem::filesystem_error when none can be made.
  TestFolder() {
    std::random_device random;
    do {
      const std::string name = "tevron_" + std::to_string(random());
      path_ = (std::filesystem::temp_directory_path() / name).string();
    } while (!std::filesystem::create_directory(path_));
  }
  ~TestFolder() { std::filesystem::remove_all(path_); }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  const std::string& path() const { return path_; }
  /// Writes a file below it and returns the file's path.
  std::string Write(const std::string& name, const std::string& content) const {
    const std::filesystem::path file = std::filesystem::path(path_) / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
  }

 private:
  std::string path_;
};

/// A folder that is the current directory while it lives. One at a time.
class InstallRoot : public TestFolder {
 public:
  InstallRoot() { std::filesystem::current_path(path()); }
  ~InstallRoot() { std::filesystem::current_path(before_); }

 private:
  const std::filesystem::path before_ = std::filesystem::current_path();
};
