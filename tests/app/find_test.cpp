// Finding variables on all pages in the real scene, with the virtual lidar as a process at the
// other end; and the program used by keyboard alone.

#include <gtest/gtest.h>

#include "app/screen.h"
#include "support/virtual_lidar_process.h"

namespace {

const char kMinimumDistance[] = "field_2_2_1";

class FindTest : public testing::Test {
 protected:
  // Presses Tab until the item has the keyboard; every stop on the way is marked.
  void TabTo(const QString& name) {
    for (int stop = 0; stop < 60 && screen_.FocusName() != name; ++stop) {
      screen_.Key(Qt::Key_Tab);
      EXPECT_TRUE(screen_.IsFocusMarked()) << screen_.FocusName().toStdString();
    }
    ASSERT_EQ(screen_.FocusName(), name);
  }

  void TypeOver(const QString& name, const QString& text) {
    TabTo(name);
    screen_.Key(Qt::Key_A, Qt::ControlModifier);
    screen_.Type(text);
  }

  void FindWithKeys(const QString& words) {
    screen_.Key(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(screen_.FocusName(), "findField");
    EXPECT_TRUE(screen_.IsFocusMarked());
    screen_.Type(words);
    ASSERT_TRUE(WaitFor([&] { return screen_.Value("foundRows", "count").toInt() > 0; }));
  }

  Screen screen_;
  VirtualLidarProcess lidar_;
};

TEST_F(FindTest, AKeyboardIsEnoughFromConnectingToLeaving) {
  TypeOver("ipField", "127.0.0.1");
  TypeOver("portField", QString::number(lidar_.port()));
  TabTo("connectButton");
  screen_.Key(Qt::Key_Return);
  ASSERT_TRUE(WaitFor([&] { return screen_.connected(); }));

  FindWithKeys("scan min");
  EXPECT_TRUE(WaitFor([&] { return screen_.Text("note_2_2_1") == "not read"; }))
      << "its page was not in view yet";
  screen_.Key(Qt::Key_Return);
  ASSERT_EQ(screen_.FocusName(), kMinimumDistance);
  EXPECT_TRUE(screen_.IsFocusMarked());
  EXPECT_EQ(screen_.Text(kMinimumDistance), "20");
  screen_.Type("55");
  EXPECT_EQ(screen_.Text("note_2_2_1"), "was 20");

  screen_.Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_TRUE(screen_.Text("saveOutcome").startsWith("Minimum Distance written and read back, "));
  EXPECT_EQ(lidar_.Held("Minimum Distance"), "55");
  EXPECT_EQ(screen_.FocusName(), kMinimumDistance);

  screen_.Key(Qt::Key_Escape);
  EXPECT_EQ(screen_.Find("findView"), nullptr);
  EXPECT_EQ(screen_.Value("pageTabs", "currentIndex").toInt(), 2);
  EXPECT_EQ(screen_.FocusName(), kMinimumDistance) << "the row is in view on its page";
  EXPECT_TRUE(screen_.IsFocusMarked());
  TabTo("connectButton");
  screen_.Key(Qt::Key_Return);
  EXPECT_TRUE(WaitFor([&] { return !screen_.connected(); }));
}

TEST_F(FindTest, KeepsTheEditsOfOnePageApartFromTheOthers) {
  ASSERT_TRUE(screen_.ConnectTo(lidar_.port()));
  FindWithKeys("azimuth");
  const QString other = "field_3_1_1";
  screen_.Key(Qt::Key_Return);
  EXPECT_EQ(screen_.FocusName(), "field_2_1_0");
  screen_.Type("10");
  screen_.Key(Qt::Key_F, Qt::ControlModifier);
  screen_.Click("findEdited");
  EXPECT_EQ(screen_.Value("foundRows", "count").toInt(), 1);
  screen_.Click("findEdited");
  ASSERT_TRUE(WaitFor([&] { return screen_.Find(other) != nullptr; }));
  EXPECT_FALSE(screen_.Find(other)->isEnabled()) << "the edits of its page would be lost";

  screen_.Click("caption_3_1_1");
  ASSERT_TRUE(WaitFor([&] { return !screen_.BoxMessage().isEmpty(); }));
  screen_.Click("dialogOther");
  EXPECT_TRUE(WaitFor([&] { return screen_.FocusName() == other; })) << "shown on its own page";
  EXPECT_EQ(screen_.Find("findView"), nullptr);

  screen_.Type("north");
  ASSERT_TRUE(WaitFor([&] { return screen_.BoxMessage().isEmpty(); }));
  FindWithKeys("distance");
  screen_.Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(screen_.FocusName(), other) << "what cannot be saved is gone to, found or not";
  EXPECT_EQ(screen_.Text("note_3_1_1"), "A number from -45 to 45 is needed");
}

}  // namespace
