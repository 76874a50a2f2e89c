#include "window_state.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSignalSpy>

#include "connection/connection_settings.h"

namespace {

TEST(WindowStateTest, IsAsItWasLeftAtTheNextStart) {
  QFile::remove(SettingsFilePath());
  ASSERT_TRUE(SaveConnectionSettings(SettingsFilePath(), {}, "Orca"));
  WindowState first;
  EXPECT_TRUE(first.console_folded() && first.log_folded()) << "the page has the room";
  EXPECT_EQ(first.console_width(), 0);

  QSignalSpy changed(&first, &WindowState::changed);
  first.SetLogFolded(false);
  first.SetLogFolded(false);
  first.SetConsoleWidth(444);
  EXPECT_EQ(changed.count(), 2);
  const WindowState second;
  EXPECT_TRUE(second.console_folded());
  EXPECT_FALSE(second.log_folded());
  EXPECT_EQ(second.console_width(), 444);
  EXPECT_EQ(LoadHostPort(SettingsFilePath(), "Orca"), "ANY") << "what else is there stays";

  for (const char* nonsense : {"-5", "wide", "99999999"}) {
    ASSERT_TRUE(SaveKeptText(SettingsFilePath(), "window/console_width", nonsense));
    EXPECT_EQ(WindowState().console_width(), 0) << nonsense;
  }
  QFile::remove(SettingsFilePath());
}

}  // namespace
