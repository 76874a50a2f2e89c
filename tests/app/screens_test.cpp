// The real scene on the real manager, clicked and typed into, with the virtual lidar as a process
// at the other end of the wire.

#include <gtest/gtest.h>

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>

#include "app/screen.h"
#include "connection/connection_settings.h"
#include "plot/plot_data.h"
#include "support/virtual_lidar_process.h"

namespace {

// Places of variables on Orca's pages.
const char kScanTab[] = "tab2";
const char kFovTab[] = "tab3";
const char kMonitorTab[] = "tab8";
const char kMinimumDistance[] = "field_2_2_1";
const char kMaximumDistance[] = "field_2_2_2";
const char kReturnMode[] = "choice_2_0_2";
const char kNoiseFilter[] = "switch_2_2_0";
const char kNoiseFilterField[] = "field_2_2_0";
const char kNotSaved[] = "What you changed on this page is not saved.";

class ScreensTest : public testing::Test {
 protected:
  void ConnectOnTab(const QString& tab) {
    ASSERT_TRUE(screen_.ConnectTo(lidar_.port())) << screen_.LogText().toStdString();
    screen_.Click(tab);
  }

  // The line beside Save says so, and no notice lies over the page.
  bool WaitForSaved(const QString& names) {
    return WaitFor([&] {
             return screen_.Text("saveOutcome").startsWith(names + " written and read back, ");
           }) &&
           screen_.Find("noticeText") == nullptr;
  }

  Screen screen_;
  VirtualLidarProcess lidar_;
};

TEST_F(ScreensTest, ConnectsByAClickAndShowsTheLidarsValues) {
  EXPECT_EQ(screen_.LampColor(), QColor("red"));
  EXPECT_EQ(screen_.Text("connectButton"), "Connect");

  ASSERT_TRUE(screen_.ConnectTo(lidar_.port())) << screen_.LogText().toStdString();
  EXPECT_EQ(screen_.LampColor(), QColor("#00FF6B"));
  EXPECT_EQ(screen_.Text("connectButton"), "Disconnect");
  EXPECT_FALSE(screen_.Find("modelChoice")->isEnabled());
  EXPECT_EQ(screen_.Text("field_0_0_1"), lidar_.Held("SN"));
  EXPECT_TRUE(WaitFor([&] { return screen_.LogText().contains("[INFO] Lidar connected"); }));
  EXPECT_EQ(screen_.BoxMessage(), QString()) << "a lidar of the chosen model needs no warning";
  EXPECT_EQ(screen_.Text("identityPn"), lidar_.Held("PN"));
  EXPECT_EQ(screen_.Text("identitySn"), lidar_.Held("SN"));
  EXPECT_EQ(screen_.Text("identityVersion"), lidar_.Held("SWVER_YMD"));
  EXPECT_EQ(screen_.Text("identityPlace"), QString("127.0.0.1, port %1").arg(lidar_.port()));
  EXPECT_TRUE(screen_.Text("identityReadAt").endsWith(" · every 3 s"));
  screen_.Click("tab9");
  EXPECT_EQ(screen_.Find("identityReadAt"), nullptr) << "nothing is read for the Upgrade page";
  EXPECT_EQ(screen_.Text("identitySn"), lidar_.Held("SN"));

  screen_.Click("connectButton");
  EXPECT_FALSE(screen_.connected());
  EXPECT_EQ(screen_.LampColor(), QColor("red"));
  screen_.TypeInto("portField", "1");
  screen_.Click("ipFieldArrow");
  ASSERT_TRUE(WaitFor([&] { return screen_.Find("ipField_0") != nullptr; }));
  EXPECT_TRUE(screen_.Text("ipField_0").endsWith("Orca " + lidar_.Held("SN")));
  screen_.Key(Qt::Key_Return);
  EXPECT_EQ(screen_.Text("portField"), QString::number(lidar_.port()));
  EXPECT_EQ(LoadKeptText(SettingsFilePath(), "last_model"), "Orca");
  EXPECT_FALSE(screen_.FindObject("linkCheckTimer")->property("running").toBool());
}

TEST_F(ScreensTest, TellsWhyALidarCannotBeReached) {
  lidar_.Kill();
  screen_.TypeInto("portField", QString::number(lidar_.port()));
  screen_.TypeInto("ipField", "127.0.0.1");
  screen_.Click("connectButton");
  EXPECT_NE(screen_.Find("connectingIndicator"), nullptr);
  screen_.Click("connectButton");
  EXPECT_TRUE(screen_.WaitForBox("Is Connecting Lidar... Please wait."));
  screen_.Click("dialogAccept");
  ASSERT_TRUE(screen_.Answer(
      QString("TCP connection failed.\n127.0.0.1, port %1: the connection was refused")
          .arg(lidar_.port())));
  EXPECT_TRUE(WaitFor([&] { return screen_.Find("connectingIndicator") == nullptr; }));
  EXPECT_EQ(screen_.LampColor(), QColor("red"));

  screen_.Click("connectButton");
  EXPECT_FALSE(screen_.Value("connectButton", "emphasised").toBool());
  EXPECT_TRUE(WaitFor([&] { return screen_.Value("busyLine", "shown").toBool(); }));
  screen_.Key(Qt::Key_Escape);
  EXPECT_EQ(screen_.Find("cancelConnecting"), nullptr) << "a cancelled attempt is over at once";
  EXPECT_EQ(screen_.BoxMessage(), QString());

  screen_.TypeInto("ipField", "127.0.0");
  screen_.Click("connectButton");
  EXPECT_EQ(screen_.Find("connectingIndicator"), nullptr) << "nothing is dialled";
  EXPECT_EQ(screen_.Text("connectionProblem"), "IP address: An address like 192.168.1.201");
  EXPECT_TRUE(screen_.Find("ipField")->hasActiveFocus());
}

TEST_F(ScreensTest, TellsSinceWhenAndWhyTheLidarIsGoneAndReconnectsByOneKey) {
  ConnectOnTab(kScanTab);
  const quint16 port = lidar_.port();
  lidar_.Kill();
  QMetaObject::invokeMethod(screen_.FindObject("linkCheckTimer"), "triggered");
  ASSERT_TRUE(WaitFor([&] { return !screen_.connected(); }));
  EXPECT_TRUE(screen_.Text("linkNews").contains(" lost at "))
      << screen_.Text("linkNews").toStdString();
  EXPECT_EQ(screen_.Find("identityPn"), nullptr);
  ASSERT_TRUE(WaitFor([&] { return screen_.Find("reconnectButton")->hasActiveFocus(); }));
  const VirtualLidarProcess again(QStringList(), port);
  screen_.Key(Qt::Key_Return);
  EXPECT_TRUE(WaitFor([&] { return screen_.connected(); }));
  EXPECT_EQ(screen_.Find("linkNews"), nullptr);
}

TEST(NetworkSettingsTest, AreFollowedByAnOfferToConnectThere) {
  Screen screen;
  const VirtualLidarProcess lidar(
      {"--set", "IP Address=127.0.0.9", "--set", "PN=Zebra-1", "--set", "SN=0001"});
  ASSERT_TRUE(screen.ConnectTo(lidar.port()));
  ASSERT_TRUE(screen.Answer("a mismatch is detected between the lidar model"));
  screen.Click("tab1");
  screen.TypeInto("field_1_0_0", "127.0.0.1");
  screen.Click("saveButton");
  ASSERT_TRUE(screen.WaitForBox("the lidar is reached at 127.0.0.1."));
  EXPECT_EQ(screen.Text("dialogAccept"), "Connect to 127.0.0.1");
  screen.Click("dialogAccept");
  ASSERT_TRUE(WaitFor([&] { return screen.Text("linkNews").startsWith("Waiting until "); }));
  EXPECT_TRUE(WaitFor([&] { return screen.connected(); }));
}

TEST_F(ScreensTest, WritesWhatIsTypedAndMarksItUntilItIsSaved) {
  ConnectOnTab(kScanTab);
  screen_.TypeInto(kMaximumDistance, "78");
  screen_.Click("tab1");
  ASSERT_TRUE(screen_.Answer(kNotSaved, "Enter"));
  EXPECT_EQ(screen_.Text(kMaximumDistance), "78") << "whoever stays loses nothing";
  screen_.Click("tab1");
  ASSERT_TRUE(screen_.Answer(kNotSaved, "dialogOther"));
  EXPECT_EQ(screen_.Value("pageTabs", "currentIndex").toInt(), 1);
  screen_.Click(kScanTab);
  EXPECT_EQ(screen_.Text(kMaximumDistance), "200");

  screen_.TypeInto(kMaximumDistance, "90");
  screen_.Ask("askToClose");
  ASSERT_TRUE(screen_.Answer(kNotSaved, "Escape"));
  screen_.Click("connectButton");
  ASSERT_TRUE(screen_.Answer(kNotSaved));
  ASSERT_TRUE(WaitFor([&] { return !screen_.connected(); }));
  EXPECT_EQ(lidar_.Held("Maximum Distance"), "90") << "saved before it is let go";

  screen_.TypeInto(kMinimumDistance, "50");
  screen_.Ask("askToClose");
  ASSERT_TRUE(screen_.WaitForBox(kNotSaved));
  EXPECT_EQ(screen_.Text("dialogAccept"), "Discard") << "there is nowhere to save it";
  ASSERT_TRUE(screen_.Answer(kNotSaved, "Escape"));
  screen_.Click("connectButton");
  ASSERT_TRUE(WaitFor([&] { return screen_.connected(); }));
  EXPECT_EQ(screen_.Text(kMinimumDistance), "50") << "a connection takes nothing away";
  EXPECT_TRUE(screen_.Value(kMinimumDistance, "pending").toBool());
  EXPECT_EQ(lidar_.Held("Minimum Distance"), "20") << "nothing is written before Save";

  screen_.Key(Qt::Key_S, Qt::ControlModifier);
  ASSERT_TRUE(WaitForSaved("Minimum Distance"));
  EXPECT_EQ(lidar_.Held("Minimum Distance"), "50");
  EXPECT_EQ(lidar_.Held("Maximum Distance"), "90") << "a field beside it keeps its value";
  EXPECT_EQ(screen_.Text(kMinimumDistance), "50");
  EXPECT_FALSE(screen_.Value(kMinimumDistance, "pending").toBool());
  EXPECT_TRUE(WaitFor([&] { return screen_.LogText().contains("[SUCCESS]"); }));
}

TEST_F(ScreensTest, WritesChoicesSwitchesAndAngles) {
  ConnectOnTab(kScanTab);
  screen_.Click(kReturnMode);
  screen_.Key(Qt::Key_Down);
  screen_.Key(Qt::Key_Return);
  screen_.Click(kNoiseFilter);
  EXPECT_EQ(screen_.Text(kNoiseFilterField), "0");
  EXPECT_FALSE(screen_.Find(kNoiseFilterField)->isEnabled());
  screen_.Click("saveButton");
  ASSERT_TRUE(WaitForSaved("Return Mode and Noise Filter"));
  EXPECT_EQ(lidar_.Held("Return Mode"), "1");
  EXPECT_EQ(lidar_.Held("Noise Filter"), "0");
  EXPECT_EQ(screen_.BoxMessage(), QString()) << "what went well is no question";

  screen_.Click(kFovTab);
  screen_.TypeInto("fov_7", "361");
  screen_.Key(Qt::Key_Return);
  ASSERT_TRUE(screen_.Answer("Input value of fov is invalid"));
  screen_.TypeInto("fov_7", "12.5");
  screen_.Click("saveButton");
  ASSERT_TRUE(WaitForSaved("FOV Table")) << screen_.LogText().toStdString();
  // 12.5 as a float32 behind the mode, the count byte and seven other angles.
  EXPECT_EQ(lidar_.Held("FOV Table", "hex").remove(' ').mid(60, 8).toLower(), "41480000");
  EXPECT_EQ(screen_.Text("fov_7"), "12.5");
}

TEST_F(ScreensTest, AsksBeforeItWritesValuesOutOfRange) {
  ConnectOnTab(kScanTab);
  screen_.TypeInto(kMinimumDistance, "600");
  screen_.TypeInto(kMaximumDistance, "0");
  screen_.Click("saveButton");
  ASSERT_TRUE(screen_.WaitForBox("Minimum Distance: 600; allowed: 5 to 500 cm"));
  EXPECT_EQ(screen_.Text("dialogAccept"), "Continue");
  ASSERT_TRUE(screen_.Answer("\nMaximum Distance: 0; allowed: 1 to 300 m", "Enter"));
  EXPECT_EQ(screen_.Text(kMinimumDistance), "600") << "the edits are still there";

  screen_.Click("saveButton");
  ASSERT_TRUE(screen_.Answer("Minimum Distance: 600"));
  ASSERT_TRUE(screen_.WaitForBox("Set Failed: 0x12 SET Minimum Distance, Maximum Distance"));
  EXPECT_EQ(lidar_.Held("Minimum Distance"), "20") << "the lidar refuses them";
  EXPECT_EQ(screen_.Text(kMinimumDistance), "600") << "nothing that was typed is lost";
  EXPECT_TRUE(screen_.Value(kMinimumDistance, "pending").toBool());
}

TEST_F(ScreensTest, SendsCommandsByHandAndRecallsThem) {
  ConnectOnTab("tab0");
  EXPECT_EQ(screen_.Find("commandConsole"), nullptr) << "the page has the room at first";
  screen_.Key(Qt::Key_F12);
  screen_.Click("consoleStrip");
  EXPECT_EQ(screen_.Find("logLine"), nullptr);
  const auto border = [&] { return screen_.Value("consoleBorder", "x").toReal(); };
  const qreal dragged = border();
  screen_.Find("consoleBorder")->forceActiveFocus(Qt::TabFocusReason);
  screen_.Key(Qt::Key_Home);
  ASSERT_TRUE(WaitFor([&] { return border() < dragged - 50; }));
  const qreal leftmost = border();
  screen_.Key(Qt::Key_Left);
  screen_.Key(Qt::Key_Right);
  ASSERT_TRUE(WaitFor([&] { return border() > leftmost; })) << "no way back is lost at the end";
  screen_.Click("bytesFlowSwitch");
  screen_.TypeInto("consoleCommand", "0x11");
  EXPECT_TRUE(screen_.Text("consoleNote").startsWith("0x11 reads Scan: Spin Rate, "));
  screen_.Key(Qt::Key_Return);
  EXPECT_TRUE(screen_.Text("replyHeader").startsWith("47 74 11 "));
  EXPECT_TRUE(screen_.Text("replyPayload").startsWith("02 58 "));  // 600 rpm
  EXPECT_TRUE(screen_.Text("consoleVerdict").startsWith("0x11 answered, "));
  EXPECT_TRUE(WaitFor([&] { return screen_.LogText().contains("[BYTESFLOW] RECV: 47 74 11"); }));

  screen_.TypeInto("consoleCommand", "ff");
  screen_.TypeInto("consolePayload", "5a 01 02 00");
  EXPECT_TRUE(screen_.Text("consoleNote").startsWith("0xFF writes Diagnostics: Interference Fil"));
  screen_.TypeInto("consolePayload", "5b 01");
  EXPECT_TRUE(screen_.Text("consoleNote").startsWith("0xFF a long command, "));

  screen_.TypeInto("consoleCommand", "99");
  screen_.TypeInto("consolePayload", "01 02");
  screen_.Click("consoleSend");
  EXPECT_EQ(screen_.Text("consoleVerdict"), "0x99 refused: 1 unknown command");
  screen_.TypeInto("consoleCommand", "zz");
  screen_.Key(Qt::Key_Return);
  ASSERT_TRUE(screen_.Answer("Incorrect CMX header was entered. Parsing failed.", "Escape"));
  EXPECT_TRUE(screen_.Find("consoleCommand")->hasActiveFocus())
      << "the keyboard is back where it was before the box";
  screen_.Key(Qt::Key_Up);
  screen_.Key(Qt::Key_Up);
  EXPECT_EQ(screen_.Text("consoleCommand"), "0x11");
  EXPECT_TRUE(screen_.Text("replyPayload").startsWith("02 58 ")) << "it has its reply back";
  screen_.Key(Qt::Key_Down);
  EXPECT_EQ(screen_.Text("consolePayload"), "01 02");
  screen_.Click("history_1_copy");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "0x11");
  screen_.Click("history_1_send");
  EXPECT_EQ(screen_.Value("consoleHistory", "count").toInt(), 3);

  screen_.Click("connectButton");
  screen_.Click("history_0_send");
  EXPECT_EQ(screen_.Text("consoleVerdict"), "Not sent: Please connect to lidar first");
  EXPECT_EQ(screen_.Text("replyHeader"), QString()) << "no old reply beside it";
}

TEST_F(ScreensTest, RestartsTheLidarOnlyAfterAQuestion) {
  ConnectOnTab("tab0");
  const auto ask = [this] {
    screen_.Click("gearButton");
    ASSERT_TRUE(WaitFor([&] { return screen_.Find("restartEntry") != nullptr; }));
    screen_.Click("restartEntry");
    ASSERT_TRUE(screen_.WaitForBox("The lidar restarts"));
  };
  ask();
  EXPECT_FALSE(lidar_.Output().contains("request 0x10"));
  screen_.Click("dialogAccept");
  EXPECT_TRUE(WaitFor([&] { return lidar_.Output().contains("request 0x10"); }));
  ASSERT_TRUE(WaitFor([&] { return screen_.Find("stopAwaiting") != nullptr; }));
  EXPECT_FALSE(screen_.connected());
  EXPECT_TRUE(WaitFor([&] { return screen_.connected(); })) << "it comes back by itself";

  ask();
  ASSERT_TRUE(screen_.Answer("The lidar restarts"));
  ASSERT_TRUE(WaitFor([&] { return screen_.Find("stopAwaiting") != nullptr; }));
  screen_.Click("stopAwaiting");
  EXPECT_EQ(screen_.Find("linkNews"), nullptr);
  EXPECT_FALSE(screen_.FindObject("linkCheckTimer")->property("running").toBool());
}

TEST_F(ScreensTest, WatchesTheMonitorRecordsItAndOpensTheRecording) {
  ConnectOnTab(kMonitorTab);
  screen_.Click("monitorVersion");
  screen_.Key(Qt::Key_Home);
  screen_.Key(Qt::Key_Return);
  screen_.Click("monitorAuto");
  QObject* source = screen_.FindObject("monitorSource");
  const auto* live = source->property("live").value<PlotData*>();
  ASSERT_TRUE(WaitFor([&] { return live->samples() >= 3; })) << screen_.LogText().toStdString();
  EXPECT_GT(screen_.Text("monitorNow0").toDouble(), 0);

  const QTemporaryDir folder;
  const QUrl folder_url = QUrl::fromLocalFile(folder.path());
  QMetaObject::invokeMethod(screen_.Find("monitorRecord"), "start", Q_ARG(QVariant, folder_url));
  ASSERT_TRUE(WaitFor([&] { return screen_.Text("recordProgress").contains("2 samples"); }));
  screen_.Click("recordButton");
  ASSERT_TRUE(screen_.WaitForNotice("Monitor record saved:"));
  const QString file = screen_.Text("noticeText").section('\n', 1, 1);

  screen_.Click("connectButton");
  EXPECT_EQ(screen_.Text("monitorNews"), "Not connected: these are the last readings.");
  QMetaObject::invokeMethod(source, "Open", Q_ARG(QUrl, QUrl::fromLocalFile(file)));
  ASSERT_TRUE(WaitFor([&] { return screen_.Find("closeRecording") != nullptr; }));
  EXPECT_TRUE(screen_.Text("monitorNews").startsWith(QFileInfo(file).fileName()));
  EXPECT_GE(source->property("recorded").value<PlotData*>()->samples(), 2);
  screen_.Click("closeRecording");
  EXPECT_TRUE(WaitFor([&] { return screen_.Find("closeRecording") == nullptr; }));

  QMetaObject::invokeMethod(source, "Open", Q_ARG(QUrl, folder_url));
  EXPECT_TRUE(screen_.WaitForBox(folder.path())) << "what is no recording is refused";
}

TEST_F(ScreensTest, ShowsAnotherModelsPages) {
  const QVariant orca = screen_.Value("pageTabs", "titles");
  screen_.Click(kScanTab);
  screen_.Click("modelChoice");
  screen_.Key(Qt::Key_End);
  screen_.Key(Qt::Key_Return);
  ASSERT_TRUE(WaitFor([&] { return screen_.LogText().contains("Current selected model is "); }));
  EXPECT_NE(screen_.Value("pageTabs", "titles"), orca);
  EXPECT_EQ(screen_.Value("pageTabs", "currentIndex").toInt(), 0);
  // Osprey is the model whose connection may choose its local port.
  ASSERT_NE(screen_.Find("hostPortField"), nullptr);
  screen_.TypeInto("hostPortField", "80");
  EXPECT_EQ(screen_.Value("hostPortField", "problem").toString(),
            "Host port must be in [1024, 65535]");
}

TEST(LogsTest, AreSavedWhileTheWindowGoesOnWorking) {
  Screen screen;
  const VirtualLidarProcess lidar({"--log-size", "60000", "--fault", "drip=100@0xFF#2-2"});
  const QTemporaryDir root;
  const QString folder = root.path() + "/a #1";
  screen.Click("logsButton");
  ASSERT_NE(screen.Find("logsPanel"), nullptr);
  EXPECT_EQ(screen.Find("pageRows"), nullptr);
  screen.TypeInto("logsFolder", folder);
  screen.Key(Qt::Key_Return);
  EXPECT_EQ(screen.Text("logsFolderProblem"), "There is no such folder. Choose another one.");
  ASSERT_TRUE(QDir().mkdir(folder));
  screen.TypeInto("logsFolder", folder + '/');
  screen.Key(Qt::Key_Return);
  EXPECT_EQ(screen.Text("logsObstacle"), "Connect to the lidar first.");
  EXPECT_FALSE(screen.Find("logsDownload_Event Log")->isEnabled());

  ASSERT_TRUE(screen.ConnectTo(lidar.port()));
  screen.Click("logsDownload_Event Log");
  ASSERT_TRUE(WaitFor([&] { return screen.Text("logsNote_Event Log").startsWith("Saved at "); }));
  EXPECT_EQ(QDir(folder).entryList(QDir::Files).filter("Event Log_").size(), 1);
  ASSERT_TRUE(screen.WaitForNotice("Event Log download successful."));

  screen.Click("logsDownload_Operation Log");
  ASSERT_TRUE(WaitFor([&] {
    return screen.Text("logsProgress").startsWith("Part 1 of 4: ") &&
           screen.Text("logsProgress").endsWith(" of 58.6 KiB");
  }));
  EXPECT_FALSE(screen.Find("connectButton")->isEnabled());
  EXPECT_FALSE(screen.Find("logsDownload_Event Log")->isEnabled());
  screen.Click("logsCancel");
  ASSERT_TRUE(WaitFor([&] { return screen.Text("logsNote_Operation Log") == "Cancelled"; }));
  EXPECT_TRUE(screen.Find("connectButton")->isEnabled());
  screen.Click("tab0");
  EXPECT_EQ(screen.Find("logsPanel"), nullptr);
  EXPECT_NE(screen.Find("pageRows"), nullptr);
}

}  // namespace
