#include "log_lines.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "log_filter.h"

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
  EXPECT_EQ(filter.LineAt(1), QString());

  filter.SetText("");
  lines.Append("late", "INFO");
  lines.Append("later", "WARNING");
  ASSERT_TRUE(QTest::qWaitFor([&] { return lines.count() == 5; }));
  EXPECT_EQ(Texts(filter), QStringList({"SEND: 47 74", "lidar gone", "later"}));
}

}  // namespace
