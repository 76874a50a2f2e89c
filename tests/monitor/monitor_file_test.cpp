#include "monitor/monitor_file.h"

#include <stdlib.h>

#include <cmath>
#include <stdexcept>

#include "monitor/monitor_feed.h"
#include "support/table_fixture.h"

namespace {

TEST(MonitorFile, ReadsWhatIsWrittenAndTellsWhatItLeavesOut) {
  const std::string odd = "Fan, \"left\"\n(outer) (1/min)";
  const TableFile file(RecordLine(kRecordFirstColumn, {"Temperature (°C)", odd, "Up-time"}) +
                       RecordLine("2026-11-22 10:00:00.000", {"-12.50", "1e3", "1 h 2 min 3 s"}) +
                       "2026-11-22 10:00:00.000,1,2,3\n"
                       "2026-11-22 10:00:01.500,,left,3 h\n"
                       "2026-11-22 10:00:02.000,1,2\n"
                       "2026-02-30 10:00:03.000,1,2,3\n"
                       "2026-11-22 10:00:04.000,\"1\"2,2,3\n"
                       "2026-11-22 09:00:05.000,1,2,3\n"
                       "2026-11-22 10:00:06.000,4,5,0x1F\n"
                       "2026-11-22 10:00:0");
  const MonitorFile read = ReadMonitorFile(file.path());
  ASSERT_EQ(read.variables.size(), 3U);
  EXPECT_EQ(read.variables[0].name, "Temperature");
  EXPECT_EQ(read.variables[0].unit, "°C");
  EXPECT_EQ(read.variables[1].name, "Fan, \"left\"\n(outer)");
  EXPECT_EQ(read.variables[1].unit, "1/min");
  EXPECT_EQ(read.variables[2].unit, "");

  ASSERT_EQ(read.samples.size(), 3U);
  const auto number = [&](size_t sample, size_t variable) {
    return read.samples[sample].values[variable].number;
  };
  EXPECT_EQ(number(0, 0), -12.5);
  EXPECT_EQ(number(0, 1), 1000);
  EXPECT_EQ(number(0, 2), 3723);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_TRUE(std::isnan(number(1, i)));
  }
  EXPECT_EQ(number(2, 1), 5);
  EXPECT_EQ(read.samples[1].time_ms - read.samples[0].time_ms, 1500);
  ASSERT_EQ(read.faults.size(), 6U);
  const size_t lines[] = {4, 6, 7, 8, 9, 11};
  for (size_t i = 0; i < read.faults.size(); ++i) {
    EXPECT_EQ(read.faults[i].rfind("Line " + std::to_string(lines[i]) + " is left out: ", 0), 0U)
        << read.faults[i];
  }
}

TEST(MonitorFile, TakesTheHourThatComesTwice) {
  setenv("TZ", "Europe/Berlin", 1);
  tzset();
  const TableFile file(
      "timestamp,A\n2026-10-25 02:59:59.000,1\n2026-10-25 02:00:00.000,2\n"
      "2026-10-25 02:00:01.000,3\n2026-10-25 03:00:00.000,4\n");
  const MonitorFile read = ReadMonitorFile(file.path());
  unsetenv("TZ");
  tzset();
  ASSERT_EQ(read.samples.size(), 4U);
  EXPECT_EQ(read.samples[1].time_ms - read.samples[0].time_ms, 1000);
  EXPECT_EQ(read.samples[3].time_ms - read.samples[0].time_ms, 3601000);
}

TEST(MonitorFile, RefusesWhatIsNoRecording) {
  for (const char* content : {"", "GroupID,Index\n1,1\n", "\"timestamp,A\n"}) {
    const TableFile file(content);
    EXPECT_THROW(ReadMonitorFile(file.path()), std::runtime_error) << content;
  }
  EXPECT_THROW(ReadMonitorFile("/nonexistent.csv"), std::runtime_error);
}

TEST(MonitorFeed, KeepsAnHourInTheOrderOfTimeWhateverTheClockDoes) {
  MonitorFeed feed;
  int restarts = 0;
  QObject::connect(&feed, &MonitorFeed::restarted, [&] { ++restarts; });
  feed.Restart({{"A", ""}});
  for (const int64_t time : {0, 10000, 9500, 10001, 3609000}) {
    feed.Add({time, {{1, true}}});
  }
  EXPECT_EQ(feed.begin(), 1U) << "the first one is more than an hour old";
  EXPECT_EQ(feed.end(), 5U);
  for (uint64_t i = feed.begin() + 1; i < feed.end(); ++i) {
    EXPECT_GT(feed.At(i).time_ms, feed.At(i - 1).time_ms);
  }
  feed.Add({3000000, {{2, true}}});
  EXPECT_EQ(restarts, 2);
  EXPECT_EQ(feed.end(), 1U);
  for (size_t i = 0; i < MonitorFeed::kMostSamples; ++i) {
    feed.Add({3000001 + static_cast<int64_t>(i), {{3, true}}});
  }
  EXPECT_EQ(feed.end() - feed.begin(), MonitorFeed::kMostSamples);
}

}  // namespace
