#include "transfer_pace.h"

#include <gtest/gtest.h>

namespace {

TEST(TransferPaceTest, IsToldWhenThereIsSomethingToTellAndKeepsSteady) {
  TransferPace pace;
  EXPECT_EQ(pace.SecondsLeft(100), -1);
  // A line that takes 4 KiB every 400 ms, looked at every 200 ms.
  for (int look = 0; look <= 100; ++look) {
    const int sent = 4 * (look / 2);
    pace.Note(int64_t{200} * look, sent);
    if (look < 7) {
      EXPECT_EQ(pace.KibPerSecond(), 0) << look;
    } else if (look > 30) {
      EXPECT_NEAR(pace.KibPerSecond(), 10, 1) << look;
      EXPECT_NEAR(pace.SecondsLeft(500), (500 - sent) / 10.0, 6) << look;
    }
  }
  for (int look = 101; look <= 140; ++look) {
    pace.Note(int64_t{200} * look, 200);
  }
  EXPECT_EQ(pace.SecondsLeft(500), -1) << "nothing moves";
  pace.Note(28200, 1);
  pace.Note(30200, 21);
  EXPECT_EQ(pace.SecondsLeft(31), 1) << "another transfer has its own pace";
}

}  // namespace
