#include "Log/logger.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/german_locale.h"
#include "support/log_lines.h"
#include "support/test_folder.h"

namespace kavel::lidar {
namespace {

class LogFile : public ::testing::Test {
 protected:
  ~LogFile() override { Logger::GetInstance().SetFile(""); }

  const TestFolder folder_;
  const std::string path_ = folder_.path() + "/größer/tevron.log";
};

TEST_F(LogFile, HoldsLevelPlaceAndText) {
  Logger& logger = Logger::GetInstance();
  ASSERT_TRUE(logger.SetFile(path_));
  logger.AddToQueue(kTrace, "file.cpp", 1, "f()", "left out");
  logger.AddToQueue(kWarning, "dir/file.cpp", 12, "void f()", "%d of %s", 3, "four");
  KAVEL_LOG(kError, "%s", std::string(5000, 'x').c_str());
  ASSERT_TRUE(logger.SetFile(""));
  KAVEL_LOG(kError, "after the end");

  std::ostringstream content;
  content << std::ifstream(std::filesystem::u8path(path_)).rdbuf();
  const std::string text = content.str();
  EXPECT_EQ(text.find("left out"), std::string::npos);
  EXPECT_NE(text.find("warning [file.cpp:12] void f() - 3 of four\n"), std::string::npos) << text;
  EXPECT_NE(text.find(std::string(5000, 'x')), std::string::npos);
  EXPECT_EQ(text.find("after the end"), std::string::npos);
}

TEST_F(LogFile, RotatesAndDropsTheOldest) {
  ASSERT_TRUE(Logger::GetInstance().SetFile(path_));
  const std::string line(size_t{64} * 1024, 'x');
  for (size_t written = 0; written < 6 * Logger::kMaxFileBytes; written += line.size()) {
    KAVEL_LOG(kWarning, "%s", line.c_str());
    Logger::GetInstance().Flush();
  }
  Logger::GetInstance().SetFile("");
  size_t files = 0;
  for (const auto& file :
       std::filesystem::directory_iterator(std::filesystem::u8path(path_).parent_path())) {
    EXPECT_LE(file.file_size(), Logger::kMaxFileBytes);
    ++files;
  }
  EXPECT_EQ(files, Logger::kRotatedFiles + 1);
}

TEST_F(LogFile, WritesNumbersWithAPointInEveryLocale) {
  const GermanLocale locale;
  if (!locale.works()) {
    GTEST_SKIP() << "no German locale, and no localedef to make one";
  }
  testing::LogLines log;
  KAVEL_LOG(kTrace, "exec time: %.1fms", 0.5);
  EXPECT_EQ(log.Count(kTrace, "exec time: 0.5ms"), 1);
}

}  // namespace
}  // namespace kavel::lidar
