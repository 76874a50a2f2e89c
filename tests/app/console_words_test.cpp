#include "console_words.h"

#include <gtest/gtest.h>

#include <QFile>

#include "command_favourites.h"
#include "connection/connection_settings.h"

namespace {

TEST(ConsoleWordsTest, TellHowACommandWent) {
  const char* const cases[][3] = {
      {"0x11", "47 74 11 00 00 00 00 12", "0x11 answered, 18 bytes"},
      {"7", "47 74 07 00 00 00 00 01", "0x07 answered, 1 byte"},
      {"2a", "47 74 2a 00 00 01 00 00", "0x2A answered, 65536 bytes"},
      {"1FF", "47 74 ff 03 00 00 00 00", "0xFF refused: 3 value out of range"},
      {"0x99", "47 74 99 4d 00 00 00 00", "0x99 refused: 77 a code of this device"},
      {"0x11", "47 74 12 00 00 00 00 00", "0x11: the answer belongs to 0x12"},
      {"0x11", "", "0x11: no answer"},
  };
  for (const auto& [command, header, verdict] : cases) {
    EXPECT_EQ(ConsoleWords::Verdict(command, header)["text"].toString(), verdict);
  }
}

TEST(ConsoleWordsTest, SayOnceWhatACodeInAMessageMeans) {
  const char refused[] = "Set Failed: 0x20 SET Spin Rate ret_code: lidar return code 3";
  EXPECT_EQ(ConsoleWords::RefusalIn(refused), "Code 3: value out of range.");
  EXPECT_EQ(ConsoleWords::RefusalIn("download failed. return code: 4"), "Code 4: not allowed now.");
  for (const char* unknown : {"lidar return code 77", "lidar return code 300", "return code: -1",
                              "lidar return code 9 (the firmware did not arrive whole)"}) {
    EXPECT_EQ(ConsoleWords::RefusalIn(unknown), "") << unknown;
  }
}

TEST(ConsoleWordsTest, MarkWhatTheConsoleWouldNotTake) {
  for (const char* taken : {"7", "0x07", "0X1ff", "7fffffff"}) {
    EXPECT_EQ(ConsoleWords::CommandProblem(taken), "") << taken;
  }
  for (const char* refused : {"", "0x", "7g", "80000000", "11 12"}) {
    EXPECT_NE(ConsoleWords::CommandProblem(refused), "") << refused;
  }
  EXPECT_EQ(ConsoleWords::PayloadProblem(" 01  0xff "), "");
  EXPECT_NE(ConsoleWords::PayloadProblem("01,02"), "");
}

TEST(ConsoleWordsTest, PutCharactersBesideTheBytes) {
  EXPECT_EQ(ConsoleWords::Dump("4f 72 63 61 00 7e 7f", 4),
            "0000  4f 72 63 61  Orca\n"
            "0004  00 7e 7f     .~.");
  EXPECT_EQ(ConsoleWords::Dump("", 8), "");
}

TEST(CommandFavouritesTest, AreThereAgainAtTheNextStart) {
  QFile::remove(SettingsFilePath());
  CommandFavourites favourites;
  EXPECT_NE(favourites.Add(" ", "07", ""), "") << "it needs a name";
  for (int i = 0; i < CommandFavourites::kMost; ++i) {
    EXPECT_EQ(favourites.Add(QString("n\u00e4me \"%1\", a").arg(i), "0x11", "01 02"), "");
  }
  EXPECT_NE(favourites.Add("one more", "07", ""), "");
  EXPECT_EQ(favourites.Add("n\u00e4me \"1\", a", "07", ""), "") << "one of that name is replaced";
  favourites.Remove(0);
  const CommandFavourites again;
  EXPECT_EQ(again.list(), favourites.list());
  ASSERT_EQ(again.list().size(), CommandFavourites::kMost - 1);
  EXPECT_EQ(again.list().first().toMap()["command"], "07");
  QFile::remove(SettingsFilePath());
  EXPECT_EQ(CommandFavourites().list(), QVariantList());
}

}  // namespace
