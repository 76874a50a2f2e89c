#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "CmxClient/log_sink.h"
#include "support/scripted_sender.h"

inline Bytes FromHex(const std::string& hex) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

inline constexpr char kTestAes128Key[] = "2b7e151628aed2a6abf7158809cf4f3c";
inline constexpr char kTestAes256Key[] =
    "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4";

/// A throw-away install root that is the current directory while it lives.
class InstallRoot {
 public:
  InstallRoot() : before_(std::filesystem::current_path()) {
    std::string name = (std::filesystem::temp_directory_path() / "tevron_auth_XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
    std::filesystem::create_directory(folder_ / "Config");
    std::filesystem::current_path(folder_);
  }
  ~InstallRoot() {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(folder_);
  }
  void Write(const std::string& path, const std::string& text) const {
    std::ofstream(path, std::ios::binary) << text;
  }
  void WriteKeys(const std::string& extra = "") const {
    Write("Config/auth_keys.ini", std::string("[keys]\naes128_key=") + kTestAes128Key +
                                      "\naes256_key=" + kTestAes256Key +
                                      "\nmaskword_1=61732650\nmaskword_2=0x613CD1CF\n"
                                      "mix_c1=ea980b8d\nmix_c2=b2553f5\n" +
                                      extra);
  }

 private:
  std::filesystem::path before_;
  std::filesystem::path folder_;
};

class CollectedLines : public kavel::lidar::LogSink {
 public:
  void WriteLine(const std::string& line) override { lines.push_back(line); }
  std::vector<std::string> lines;
};
