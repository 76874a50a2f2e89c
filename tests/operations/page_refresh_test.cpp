#include "operations/page_refresh.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "model_fixture.h"
#include "support/recorded_report.h"
#include "support/scripted_sender.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPass{1};
constexpr std::chrono::seconds kPatience{20};

/// Counts and waits for what the refreshing thread announces.
class Announcements {
 public:
  void Add() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++count_;
    changed_.notify_all();
  }
  bool WaitFor(int count) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, kPatience, [&] { return count_ >= count; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
};

class PageRefreshTest : public testing::Test {
 protected:
  PageRefreshTest() {
    for (uint8_t i = 0; i < 100; ++i) lidar_->replies.push_back({0, {i}});
    state_.connected = true;
  }

  ModelFixture fixture_{
      "1,1,0x30,,,First,0,uint8,9,,,,,Page A,,1,,,\n"
      "2,1,0x40,,,Second,0,uint8,9,,,,,Page B,,1,,,\n"};
  const std::shared_ptr<ScriptedSender> lidar_ = std::make_shared<ScriptedSender>();
  LinkState state_;
  RecordedReport report_;
  Announcements refreshed_;
};

TEST_F(PageRefreshTest, ReadsThePageInViewAgainAndAgain) {
  {
    PageRefresh refresh(
        lidar_, state_, report_, {fixture_.model, 0}, [this] { refreshed_.Add(); }, kPass);
    ASSERT_TRUE(refreshed_.WaitFor(2));
    refresh.SetView({fixture_.model, 1});
    ASSERT_TRUE(refreshed_.WaitFor(4));
  }
  EXPECT_EQ(0x30, lidar_->sent.front().cmd);
  EXPECT_EQ(0x40, lidar_->sent.back().cmd);
  EXPECT_EQ(std::to_string(lidar_->sent.size() - 1), fixture_.Text("Second"));
}

TEST_F(PageRefreshTest, EndsWithoutWaitingForItsNextPass) {
  const PageRefresh refresh(
      lidar_, state_, report_, {fixture_.model, 0}, [] {}, std::chrono::hours(1));
}

}  // namespace
