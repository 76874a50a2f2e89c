#include "log_lines.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "log_filter.h"
#include "log_selection.h"

namespace {

QStringList Texts(const QAbstractItemModel& model) {
  QStringList texts;
  for (int row = 0; row < model.rowCount(); ++row) {
    texts << model.index(row, 0).data(LogLines::kTextRole).toString();
  }
  return texts;
}

TEST(LogLinesTest, TakesABundleAtOnceAndKeepsItsOrder) {
  LogLines lines;
  QSignalSpy inserted(&lines, &QAbstractItemModel::rowsInserted);
  lines.Append("cleared before it was shown", "INFO");
  lines.Clear();
  lines.Append("one", "INFO");
  lines.Append("two", "ERROR");
  lines.Append("two", "ERROR");
  EXPECT_EQ(lines.count(), 0);
  ASSERT_TRUE(QTest::qWaitFor([&] { return lines.count() > 0; }));
  EXPECT_EQ(Texts(lines), QStringList({"one", "two"}));
  EXPECT_EQ(inserted.count(), 1);
  EXPECT_TRUE(lines.index(1, 0).data(LogLines::kLineRole).toString().endsWith(" [ERROR] two"));
}

TEST(LogLinesTest, DropsTheOldestLinesWhenItIsFull) {
  LogLines lines;
  for (int i = 0; i < LogLines::kMaximumLines + 10; ++i) {
    lines.Append(QString::number(i), "BYTESFLOW");
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return Texts(lines).contains("5009"); }));
  EXPECT_EQ(lines.count(), LogLines::kMaximumLines);
  EXPECT_EQ(Texts(lines).first(), "10");

  // Long lines fill it as well: one that is as long as the whole log is then alone in it.
  const QString half(LogLines::kMaximumLength / 2, 'h');
  lines.Append(half, "BYTESFLOW");
  lines.Append("short", "INFO");
  ASSERT_TRUE(QTest::qWaitFor([&] { return lines.last_text() == "short"; }));
  lines.Append(half, "BYTESFLOW");
  ASSERT_TRUE(QTest::qWaitFor([&] { return lines.count() == 2; }));
  EXPECT_EQ(Texts(lines), QStringList({"short", half}));
  lines.Append(half + half + "cut", "BYTESFLOW");
  EXPECT_EQ(Texts(lines), QStringList({half + half}));
  EXPECT_LT(lines.index(0, 0).data(LogLines::kShownRole).toString().size(),
            LogLines::kShownLength + 100);
}

TEST(LogLinesTest, CountsRepetitionsAndWhatNobodyHasSeen) {
  LogLines lines;
  const auto wait = [&](const char* last) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return lines.last_text() == last; })) << last;
  };
  lines.Append("no answer", "WARNING");
  lines.Append("no answer", "WARNING");
  wait("no answer (x 2)");
  lines.Append("no answer", "WARNING");
  lines.Append("SEND: 07", "BYTESFLOW");
  lines.Append("SEND: 07", "BYTESFLOW");
  wait("no answer (x 3)");
  EXPECT_EQ(Texts(lines), QStringList({"no answer", "SEND: 07", "SEND: 07"}));
  EXPECT_TRUE(lines.index(0, 0).data(LogLines::kLineRole).toString().endsWith("answer (x 3)"));
  EXPECT_EQ(lines.last_tag(), "WARNING") << "raw bytes are no message";
  EXPECT_EQ(lines.unseen_warnings(), 3);

  lines.SetInView(true);
  lines.Append("refused", "ERROR");
  wait("refused");
  EXPECT_EQ(lines.unseen_warnings() + lines.unseen_errors(), 0);
  lines.SetInView(false);
  lines.Append("refused again", "ERROR");
  wait("refused again");
  EXPECT_EQ(lines.unseen_errors(), 1);
}

TEST(LogFilterTest, ShowsWhatHasAShownTagAndTheText) {
  LogLines lines;
  LogFilter filter;
  filter.SetLines(&lines);
  lines.Append("Lidar connected", "INFO");
  lines.Append("SEND: 47 74", "BYTESFLOW");
  lines.Append("lidar gone", "ERROR");
  ASSERT_TRUE(QTest::qWaitFor([&] { return filter.rowCount() == 3; }));

  filter.SetText("LIDAR");
  EXPECT_EQ(Texts(filter), QStringList({"Lidar connected", "lidar gone"}));
  filter.SetHiddenTags({"INFO"});
  EXPECT_EQ(Texts(filter), QStringList({"lidar gone"}));
  EXPECT_TRUE(filter.ShownText().endsWith("[ERROR] lidar gone\n"));

  filter.SetText("");
  lines.Append("late", "INFO");
  lines.Append("later", "WARNING");
  ASSERT_TRUE(QTest::qWaitFor([&] { return lines.count() == 5; }));
  EXPECT_EQ(Texts(filter), QStringList({"SEND: 47 74", "lidar gone", "later"}));
}

TEST(LogSelectionTest, StaysOnItsLinesWhileOthersComeAndGo) {
  LogLines lines;
  LogFilter filter;
  filter.SetLines(&lines);
  LogSelection selection;
  selection.SetFilter(&filter);
  selection.Select(3, true);
  EXPECT_EQ(selection.first(), -1) << "there is nothing to select";
  for (const char* text : {"one", "two", "three", "four"}) {
    lines.Append(text, "INFO");
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return filter.rowCount() == 4; }));
  EXPECT_EQ(selection.Text(), QString());
  selection.Select(2, false);
  selection.Select(1, true);
  EXPECT_EQ(selection.Text().count('\n'), 2);
  EXPECT_TRUE(selection.Text().endsWith("[INFO] three\n"));

  filter.SetText("t");
  EXPECT_EQ(selection.first(), 0) << "one went from above";
  EXPECT_EQ(selection.current(), 0);
  EXPECT_EQ(selection.last(), 1);
  filter.SetText("three");
  EXPECT_EQ(selection.last(), -1) << "an end of it went";
  filter.SetText("");
  selection.Select(99, false);
  EXPECT_EQ(selection.current(), 3);
  selection.SelectAll();
  EXPECT_EQ(selection.Text(), filter.ShownText());
}

}  // namespace
