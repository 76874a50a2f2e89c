#include "window_state.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSignalSpy>

#include "connection/connection_settings.h"
#include "recent_lidars.h"

namespace {

TEST(WindowStateTest, IsAsItWasLeftAtTheNextStart) {
  QFile::remove(SettingsFilePath());
  ASSERT_EQ(SaveConnectionSettings(SettingsFilePath(), {}, "Orca"), "");
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
    ASSERT_EQ(SaveKeptText(SettingsFilePath(), "window/console_width", nonsense), "");
    EXPECT_EQ(WindowState().console_width(), 0) << nonsense;
  }
  QFile::remove(SettingsFilePath());
}

QString Labels(const RecentLidars& lidars) {
  QStringList labels;
  for (const QVariant& entry : lidars.entries()) {
    labels << entry.toMap()["label"].toString();
  }
  return labels.join('|');
}

TEST(RecentLidarsTest, AreTheLastEightWhateverElseTheFileHolds) {
  QFile::remove(SettingsFilePath());
  RecentLidars first;
  for (int i = 0; i < 9; ++i) {
    first.Note("Orca", QString("10.0.0.%1").arg(i), "9347", "");
  }
  first.Note("Lumo", "/dev/a", "/dev/b", "LU1");
  first.Note("Orca", "10.0.0.5", "9347", "OR5");
  first.Note("Orca", "10.0.0.5", "9347", "");
  EXPECT_EQ(first.entries().size(), 8);
  EXPECT_EQ(Labels(RecentLidars()), Labels(first));
  EXPECT_TRUE(Labels(first).startsWith(
      QString::fromUtf8("10.0.0.5, 9347 – Orca OR5|/dev/a, /dev/b – Lumo LU1|10.0.0.8, ")));

  const auto kept = [](const QStringList& lines) { return '"' + lines.join("\\n") + '"'; };
  const QString line = "Orca\\t10.0.0.1\\t9347\\t";
  const QString sound = QString::fromUtf8("10.0.0.1, 9347 – Orca");
  const std::pair<QString, QString> cases[] = {
      {kept({line, line}), sound},
      {kept({QStringList(QVector<QString>(1000, "Orca\\t1\\t\\t").toList()).join("\\n"), line}),
       QString::fromUtf8("1 – Orca|") + sound},
      {kept(QStringList(QVector<QString>(10000, line).toList())), ""},
      {kept({"Orca\\t\\t\\t", "\\t10.0.0.1\\t\\t", "Orca", line}), sound},
      {kept({"Orca\\t" + QString(5000, 'x') + "\\t1\\t", line}), sound},
      {kept({"Orca\\t\\x202e1\\t1\\t", "Orca\\t\\x000110\\t1\\t", line}), sound},
      {kept({"<b>Orca</b>\\t<img src=x>\\t\\t"}), QString::fromUtf8("<img src=x> – <b>Orca</b>")},
      {"Orca, 10.0.0.1", ""},
      {"@Variant(\\0\\0\\0\\x7f)", ""},
  };
  for (const auto& [value, labels] : cases) {
    QFile file(SettingsFilePath());
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write("[General]\nrecent_lidars=" + value.toLatin1() + "\n");
    file.close();
    RecentLidars lidars;
    EXPECT_EQ(Labels(lidars), labels) << value.left(60).toStdString();
    lidars.Note("Kiva-CMX", "/dev/c", "", "");
    EXPECT_EQ(lidars.entries().first().toMap()["model"], "Kiva-CMX");
  }
  QFile::remove(SettingsFilePath());
}

}  // namespace
