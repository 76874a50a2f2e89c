#include "page_rows.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

namespace {

QVariantMap Leaf(const char* value, bool timed, const char* state = "read") {
  return {{"current_val", value}, {"timer_update", timed}, {"state", state}};
}

// A page of two groups: a timed row and a plain one, and a second plain one that was not read.
QVariantList Map(const char* timed, const char* plain, const char* other) {
  const QVariantList first = {Leaf(timed, true), Leaf(plain, false)};
  const QVariantList second = {Leaf(other, false, "unread")};
  return {QVariant(QVariantList{QVariant(first), QVariant(second)})};
}

TEST(PageRowsTest, AnnouncesTheRowsThatDiffer) {
  QObject manager;
  const QVariantList rows_of_page = {
      QVariantList{"Timed", 1, 0, 0, 0}, QVariantList{"Plain", 1, 0, 0, 1},
      QVariantList{"Other", 4, 0, 1, 0}, QVariantList{"Nowhere", 1, 0, 7, 7}};
  manager.setProperty("level2List", QVariantList{QVariant(rows_of_page)});
  manager.setProperty("myMap", Map("1", "2", "3"));
  PageRows rows;
  const QAbstractItemModelTester tester(&rows,
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
  rows.SetManager(&manager);
  ASSERT_EQ(rows.count(), 4);
  QString starts;
  for (const QVariant& row : rows.Shape()) {
    starts += row.toMap().value("starts").toBool() ? 'x' : '.';
  }
  EXPECT_EQ(starts, "x.xx");
  EXPECT_TRUE(rows.HasKind(4));

  QSignalSpy changed(&rows, &QAbstractItemModel::dataChanged);
  const auto changed_rows = [&] {
    QString text;
    for (const QVariantList& arguments : changed) {
      text += QString::number(arguments[0].toModelIndex().row());
    }
    changed.clear();
    return text;
  };
  manager.setProperty("myMap", Map("10", "20", "30"));
  rows.TakeTimed();
  EXPECT_EQ(changed_rows(), "02");
  rows.TakeAll();
  EXPECT_EQ(changed_rows(), "1");
  rows.TakeAll();
  EXPECT_EQ(changed_rows(), "");
  EXPECT_EQ(rows.index(1).data(PageRows::kLeafRole).toMap().value("current_val"), "20");

  rows.SetPage(1);
  EXPECT_EQ(rows.count(), 0);
  EXPECT_EQ(rows.description(), "");
}

}  // namespace
