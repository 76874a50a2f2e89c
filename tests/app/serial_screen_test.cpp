// The screen of the lidars on a serial line, over pseudo-terminals that the virtual lidar makes.

#include <gtest/gtest.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include "app/screen.h"
#include "support/heart.h"
#include "support/virtual_lidar_process.h"

namespace {

QString Facts(const Screen& screen, const QString& list) {
  QString text;
  for (const QVariant& entry : screen.Value(list, "entries").toList()) {
    text += entry.toMap().value("name").toString() + '=' + entry.toMap().value("value").toString() +
            '\n';
  }
  return text;
}

// Connects and waits until the first reading is over.
void Connect(Screen* screen) {
  screen->Key(Qt::Key_Return);
  screen->Click("connectButton");
  ASSERT_TRUE(WaitFor([&] { return screen->connected(); })) << screen->LogText().toStdString();
  ASSERT_TRUE(screen->WaitForNotice("Serial is operation completed."));
  screen->Click("noticeClose");
  ASSERT_TRUE(WaitFor([&] { return screen->Find("serialActivity") == nullptr; }));
}

TEST(SerialScreenTest, ReadsAndSetsOverOneLine) {
  Screen screen("Kiva-CMX");
  const VirtualLidarProcess lidar({"--model", "Kiva-CMX"});
  EXPECT_EQ(screen.Find("gearButton"), nullptr);
  EXPECT_EQ(screen.Find("pageRows"), nullptr);
  EXPECT_EQ(screen.Find("port232"), nullptr);
  EXPECT_FALSE(screen.Find("netRead")->isEnabled());

  screen.TypeInto("port485", lidar.SerialPort());
  Connect(&screen);
  EXPECT_EQ(screen.LampColor(), QColor("#00FF6B"));
  EXPECT_FALSE(Facts(screen, "lidarInfo").contains("Serial Number=xxxxxxxx"));
  EXPECT_TRUE(Facts(screen, "lidarVersions").contains("BMB FPGA Version="));
  EXPECT_EQ(screen.Find("calibrationSave"), nullptr) << "a Lumo's alone";
  EXPECT_EQ(screen.Text("netIp").count('.'), 3);

  screen.TypeInto("destinationIp", "10.1.2.3");
  screen.TypeInto("destinationPort", "3000");
  screen.Click("destinationSet");
  ASSERT_TRUE(screen.WaitForNotice("set destination IP and port successful"));
  EXPECT_TRUE(WaitFor([&] { return !screen.Value("destinationIp", "pending").toBool(); }));
  screen.TypeInto("destinationIp", "9.9.9.9");
  screen.Click("destinationRead");
  EXPECT_TRUE(WaitFor([&] { return screen.Find("serialActivity") == nullptr; }));
  EXPECT_EQ(screen.Text("destinationIp"), "9.9.9.9") << "a reading takes nothing back";
  EXPECT_EQ(screen.Text("destinationIpNote"), "was 10.1.2.3");
  screen.Click("destinationIpUndo");
  EXPECT_EQ(screen.Text("destinationIp"), "10.1.2.3");
  EXPECT_EQ(screen.Find("destinationIpUndo"), nullptr);

  screen.Click("connectButton");
  EXPECT_FALSE(screen.connected());
  EXPECT_EQ(screen.LampColor(), QColor("red"));
  EXPECT_EQ(screen.Text("destinationIp"), "10.1.2.3");
  EXPECT_TRUE(screen.Value("destinationIp", "stale").toBool());
}

TEST(SerialScreenTest, IsOfferedWhereTheNextLidarIsChosen) {
  Screen screen("Kiva-CMX");
  const VirtualLidarProcess lidar({"--model", "Kiva-CMX", "--set", "SN=KV07"});
  screen.TypeInto("port485", lidar.SerialPort());
  Connect(&screen);
  screen.Click("connectButton");
  screen.TypeInto("port485", "/dev/none");
  screen.Key(Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(screen.Text("port485_0"), lidar.SerialPort() + QString::fromUtf8(" – Kiva-CMX KV07"));
  screen.Key(Qt::Key_Escape);
  EXPECT_EQ(screen.Find("port485_0"), nullptr);
  EXPECT_EQ(screen.Text("port485"), "/dev/none") << "what is typed is not the list's to take";

  screen.Click("modelChoice");
  for (int i = 0; i < 3; ++i) {
    screen.Key(Qt::Key_Down);
  }
  screen.Key(Qt::Key_Return);
  ASSERT_NE(screen.Find("pageTabs"), nullptr);
  screen.Click("tab2");
  screen.TypeInto("field_2_2_1", "50");
  for (const char* answer : {"Enter", "dialogAccept"}) {
    EXPECT_EQ(screen.Text("field_2_2_1"), "50") << "whoever stays loses nothing";
    screen.Click("ipFieldArrow");
    screen.Key(Qt::Key_Return);
    ASSERT_TRUE(screen.Answer("What you changed on this page is not saved.", answer));
  }
  EXPECT_EQ(screen.Text("port485"), lidar.SerialPort());
  EXPECT_EQ(screen.FocusName(), "connectButton");
  screen.Key(Qt::Key_Return);
  EXPECT_TRUE(WaitFor([&] { return screen.connected(); }));
}

TEST(SerialScreenTest, KeepsWhatItKnewAndWhatWasTypedWhenNothingIsAnswered) {
  Screen screen("Kiva-CMX");
  // Setting the destination is refused, reading it again finds no answer, nor do the versions.
  const VirtualLidarProcess lidar({"--model", "Kiva-CMX", "--fault", "return-code=3@0x43#1",
                                   "--fault", "drop@0x42#2-2", "--fault",
                                   "return-code=3@0x4D#2-2"});
  screen.TypeInto("port485", lidar.SerialPort());
  Connect(&screen);
  const QString held = screen.Text("destinationIp");
  screen.TypeInto("destinationIp", "10.1.2.3");
  screen.Click("destinationSet");
  ASSERT_TRUE(screen.Answer("set destination IP and port error, ret:"));
  EXPECT_EQ(screen.Text("destinationIp"), "10.1.2.3");
  EXPECT_EQ(screen.Text("destinationIpNote"), "was " + held);
  screen.Click("destinationRead");
  ASSERT_TRUE(screen.Answer("get destination config error, ret:"));
  screen.Click("destinationIpUndo");
  EXPECT_EQ(screen.Text("destinationIp"), held);
  EXPECT_TRUE(screen.Value("destinationIp", "stale").toBool());
  EXPECT_TRUE(screen.Text("linkNews").startsWith("No answer since "));
  screen.Click("askAgain");
  EXPECT_TRUE(WaitFor([&] { return screen.Find("linkNews") == nullptr; }));

  screen.Click("standby");
  screen.Key(Qt::Key_Down);
  screen.Key(Qt::Key_Return);
  screen.Click("standbySet");
  EXPECT_TRUE(WaitFor([&] { return Facts(screen, "lidarInfo").contains("Mode=Standby"); }));
  EXPECT_TRUE(Facts(screen, "lidarVersions").contains("BMB FPGA Version="));
  EXPECT_TRUE(screen.connected()) << "nothing is let go by itself";
}

TEST(SerialScreenTest, ANumberOfTheLidarIsTextAndNothingElse) {
  QTcpServer server;
  ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
  const QString number = QString("<img src=\"http://127.1:%1/x\">").arg(server.serverPort());
  Screen screen("Kiva-CMX");
  const VirtualLidarProcess lidar({"--model", "Kiva-CMX", "--set", "SN=" + number});
  screen.TypeInto("port485", lidar.SerialPort());
  Connect(&screen);
  EXPECT_TRUE(Facts(screen, "lidarInfo").contains("Serial Number=" + number));
  // Whoever was asked for a picture while that was shown stands in front of this client.
  QTcpSocket client;
  client.connectToHost(QHostAddress::LocalHost, server.serverPort());
  ASSERT_TRUE(WaitFor([&] { return server.hasPendingConnections(); }));
  EXPECT_EQ(server.nextPendingConnection()->peerPort(), client.localPort());
}

// By drops and clicks, with the window alive and guarded all the while.
TEST(SerialScreenTest, UpgradesTheLidarAndReadsWhatItRunsThen) {
  Screen screen("Kiva-CMX");
  // Away for longer than the first try to reach it takes.
  const VirtualLidarProcess lidar({"--model", "Kiva-CMX", "--restart-time", "2500"});
  const QTemporaryDir folder;
  const QString file = folder.filePath(QString::fromUtf8("Kiva \u00fc #1.patch"));
  VirtualLidarProcess::MakeFirmware("Kiva-CMX", "2.8.0", file, 1024);
  screen.TypeInto("port485", lidar.SerialPort());
  Connect(&screen);
  screen.Find("attachFile")->forceActiveFocus();
  EXPECT_FALSE(screen.Find("startUpgrade")->isEnabled());
  screen.Drop("upgradeDrop", {QUrl::fromLocalFile(folder.filePath("Kiva.PATCH"))});
  ASSERT_TRUE(screen.Answer("Upgrade package rejected: it has to be a .patch file"));
  screen.Drop("upgradeDrop", {QUrl::fromLocalFile(file)});
  EXPECT_EQ(screen.Text("upgradeComponents").count("1.0"), 4) << "images of 1 MiB each";

  screen.Click("startUpgrade");
  ASSERT_TRUE(WaitFor([&] { return screen.Find("upgradeBar") != nullptr; }));
  Heart heart;
  heart.Enter("upgrading");
  screen.Click("connectButton");
  ASSERT_TRUE(screen.Answer("Disconnect REJECTED. Lidar is upgrading."));
  screen.Ask("askToClose");
  ASSERT_TRUE(screen.Answer("The firmware is being sent", "Enter"));
  ASSERT_TRUE(screen.WaitForNotice("Kiva upgrade completed."));
  EXPECT_LT(heart.longest_ms(), 1000) << "nothing of a transfer holds the window";
  ASSERT_TRUE(WaitFor([&] { return screen.Find("stopWaiting") != nullptr; }));
  EXPECT_TRUE(WaitFor([&] { return screen.Find("connectingIndicator") != nullptr; }));
  ASSERT_TRUE(WaitFor([&] { return screen.Find("upgradeOutcome") != nullptr; }, 60000));
  EXPECT_TRUE(screen.Text("upgradeOutcome").contains("Upgrade complete: was 2.6.14"))
      << screen.Text("upgradeOutcome").toStdString();
  EXPECT_TRUE(screen.connected());
}

TEST(SerialScreenTest, SaysWhatAPairOfPortsCannotDo) {
  Screen screen("Lumo");
  const VirtualLidarProcess lidar({"--model", "Lumo", "--uart-points", "50"});
  screen.TypeInto("port485", lidar.SerialPort("485"));
  screen.TypeInto("port232", lidar.SerialPort("232"));
  Connect(&screen);
  EXPECT_TRUE(Facts(screen, "lidarVersions").contains("Junction Box Version="));
  EXPECT_EQ(screen.Find("netSet"), nullptr);
  EXPECT_EQ(screen.Find("imuSet"), nullptr);
  EXPECT_TRUE(screen.Find("returnModeSet")->isEnabled());

  screen.Key(Qt::Key_F12);  // the bottom line has all its room while the log is open
  EXPECT_TRUE(WaitFor([&] { return screen.Text("uartTally").endsWith(" packets so far"); }));
  EXPECT_TRUE(WaitFor([&] {
    return screen.Text("uartSummary")
        .endsWith(" packets a second on " + lidar.SerialPort("232") + ".");
  }));
  EXPECT_EQ(screen.Find("udpSummary"), nullptr) << "nobody asked for UDP";
  screen.Click("connectButton");
  EXPECT_TRUE(WaitFor([&] { return screen.Find("udpSummary") != nullptr; }));
  EXPECT_EQ(screen.Find("uartSummary"), nullptr);
}

}  // namespace
