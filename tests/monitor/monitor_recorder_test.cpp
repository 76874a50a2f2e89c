#include "monitor/monitor_recorder.h"

#include <atomic>
#include <mutex>

#include "support/model_fixture.h"
#include "support/recorded_report.h"
#include "support/wait_for.h"

namespace {

using kavel::lidar::testing::WaitFor;

constexpr char kRows[] =
    "1,1,0x30,,,\"Fan, left\",0,uint8,9,,,,,Page,,0,,,\n"
    "1,2,,,,Block,0,string,\"a \"\"b\"\"\",monitor,,,,Page,8,0,,,\n"
    "1,3,0x30,,,Secret,0,uint8,9,hidden,,,,Page,,0,,,\n"
    "2,1,0x31,,,Elsewhere,0,uint8,9,,,,,Other,,0,,,\n";

TEST(MonitorRecorder, TellsWhatBecameOfTheFile) {
  const TestFolder folder;
  const std::string good = folder.path() + "/good.csv";
  const std::pair<std::string, std::string> cases[] = {
      {folder.path() + "/none/file.csv", "error: Failed to create monitor record file"},
      {good, "success: Monitor record saved:\n" + good},
  };
  const ModelFixture model(kRows);
  const CurrentSender sender;
  const LinkState state;
  ReadFailures failures;
  const auto report = std::make_shared<RecordedReport>();
  const MonitorReader reader(sender, state, failures, report);
  for (const auto& [file, told] : cases) {
    std::atomic<bool> ended{false};
    std::atomic<int64_t> samples{0};
    {
      const MonitorRecorder recorder(
          {model.model, file, std::chrono::seconds(1), std::chrono::seconds(60)}, reader, report,
          {[&](const MonitorRecording& recording) { samples = recording.samples; },
           [&] { ended = true; }});
      EXPECT_TRUE(WaitFor([&] { return ended.load(); }));
    }
    EXPECT_EQ(report->Take().back(), told);
    EXPECT_EQ(samples, file == good ? 1 : 0);
  }
  std::ifstream file(good);
  std::string header;
  std::string line;
  std::getline(file, header);
  std::getline(file, line);
  EXPECT_EQ(header, "timestamp,\"Fan, left\",Block");
  EXPECT_EQ(line.substr(line.find(',')), ",9,\"a \"\"b\"\"\"");
}

}  // namespace
