#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <clocale>
#include <filesystem>
#include <string>

/// A locale with a decimal comma, in force while this lives: the system's, or one made for the
/// occasion.
class GermanLocale {
 public:
  GermanLocale() {
    if (Load()) {
      return;
    }
    std::filesystem::create_directories(folder_);
    const std::string command =
        "localedef -i de_DE -f UTF-8 '" + folder_ + "/" + kName + "' >/dev/null 2>&1";
    // localedef warns with a non-zero result; whether the locale loads is what counts.
    (void)!std::system(command.c_str());  // NOLINT(bugprone-command-processor)
    setenv("LOCPATH", folder_.c_str(), 1);
    Load();
  }
  ~GermanLocale() {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
    std::filesystem::remove_all(folder_);
  }
  GermanLocale(const GermanLocale&) = delete;
  GermanLocale& operator=(const GermanLocale&) = delete;

  /// False when this machine has none and cannot make one.
  bool works() const { return works_; }

 private:
  static constexpr const char* kName = "de_DE.UTF-8";

  bool Load() { return works_ = std::setlocale(LC_ALL, kName) != nullptr; }

  const std::string folder_ = testing::TempDir() + "german_locale";
  bool works_ = false;
};
