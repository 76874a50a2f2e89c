#pragma once

#include "support/test_folder.h"

/// An install root with a copy of the tables that ship: what the program finds under "./Config".
struct TestInstall : InstallRoot {
  TestInstall() {
    std::filesystem::copy(TEVRON_CONFIG_SOURCE, "Config", std::filesystem::copy_options::recursive);
    std::filesystem::remove_all("Config/site");  // a developer's own
  }
};
