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

// Two pages: who it is, and how it scans.
void FillForSearch(QObject* manager, const QString& state) {
  const auto leaf = [&](const char* page, const char* value, const char* standard) {
    return QVariantMap{{"page", page},    {"current_val", value}, {"default_val", standard},
                       {"permission", 1}, {"state", state},       {"edited", state == "edited"}};
  };
  QVariantMap mode = leaf("Scan", "2", "2");
  mode.insert("varname_value_to_option", QVariantMap{{"2", "Strongest"}});
  QVariantMap serial = leaf("Device", "AB-2", "X");
  serial.insert("permission", 0);
  const QVariantList device = {serial};
  const QVariantList scan = {mode, leaf("Scan", "600", "600.00"), leaf("Scan", "21", "20")};
  manager->setProperty("myMap", QVariantList{QVariant(QVariantList{QVariant(device)}),
                                             QVariant(QVariantList{QVariant(scan)})});
  const QVariantList device_rows = {QVariantList{"Serial Number", 0, 0, 0, 0}};
  const QVariantList scan_rows = {QVariantList{"Return Mode", 3, 1, 0, 0},
                                  QVariantList{"Spin Rate", 1, 1, 0, 1},
                                  QVariantList{"Minimum Distance", 1, 1, 0, 2}};
  manager->setProperty("level2List", QVariantList{QVariant(device_rows), QVariant(scan_rows)});
}

TEST(PageRowsTest, FindsNamesValuesAndPages) {
  const std::tuple<const char*, bool, bool, const char*, QString> cases[] = {
      {"", false, false, "read", ""},
      {"SPIN", false, false, "read", "Spin Rate"},
      {"scan  min", false, false, "read", "Minimum Distance"},
      {"2", false, false, "read", "Serial Number,Return Mode,Minimum Distance"},
      {"strong", false, false, "read", "Return Mode"},
      {"strong", false, false, "unread", ""},
      {"rate 60", false, false, "unread", ""},
      {"ratemin", false, false, "read", ""},
      {"", false, true, "read", "Minimum Distance"},
      {"", false, true, "unread", ""},
      {"", true, false, "read", ""},
      {"device", true, false, "edited", "Serial Number"},
  };
  for (const auto& [words, only_edited, only_changed, state, wanted] : cases) {
    SCOPED_TRACE(std::string(words) + " " + state);
    QObject manager;
    FillForSearch(&manager, state);
    PageRows rows;
    rows.SetPage(PageRows::kEveryPage);
    rows.SetManager(&manager);
    EXPECT_EQ(rows.count(), 0);
    rows.Search(words, only_edited, only_changed);
    QStringList found;
    for (int i = 0; i < rows.count(); ++i) {
      found << rows.index(i).data(PageRows::kCaptionRole).toString();
    }
    EXPECT_EQ(found.join(','), wanted);
    EXPECT_EQ(rows.found_count(), found.size());
  }
}

}  // namespace
