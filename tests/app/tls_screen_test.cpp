// A lidar that is reached over TLS, in the real scene.

#include <gtest/gtest.h>

#include <QDir>
#include <memory>

#include "app/screen.h"
#include "connection/trusted_lidars.h"
#include "libkavel/openssl_server.h"
#include "support/virtual_lidar_process.h"

namespace {

class TlsScreenTest : public testing::Test {
 protected:
  // A model whose settings are protected.
  TlsScreenTest() {
    QDir(TrustedLidars::UsualFolder()).removeRecursively();
    std::filesystem::create_directories("Config/site");
    std::ofstream("Config/site/feature_config.csv")
        << "Model,EnableCmxClientHostPortUi,Link\nOsprey,0,tls\n";
    screen_.Choose("Osprey");
  }

  std::unique_ptr<VirtualLidarProcess> Lidar(const std::string& certificate, quint16 port = 0) {
    return std::make_unique<VirtualLidarProcess>(
        QStringList{"--model", "Osprey", "--set", "SN=%2/../1", "--tls",
                    QString::fromStdString(certificates_.Cert(certificate)),
                    QString::fromStdString(certificates_.Key(certificate))},
        port);
  }
  void PointAt(quint16 port) {
    screen_.TypeInto("ipField", "127.0.0.1");
    screen_.TypeInto("portField", QString::number(port));
    screen_.Key(Qt::Key_Return);
  }
  bool IsEncrypted() {
    return WaitFor([this] { return screen_.connected() && screen_.Find("linkSecurity"); });
  }

  const kavel::lidar::testing::Certificates certificates_;
  Screen screen_;
};

TEST_F(TlsScreenTest, AsksOnceWhoseCertificateItIsAndRefusesAnotherOne) {
  auto lidar = Lidar("lidar");
  const quint16 port = lidar->port();
  const QString number = lidar->Held("SN");
  PointAt(port);
  screen_.Click("connectButton");
  ASSERT_TRUE(screen_.WaitForBox("a certificate that is not known on this computer"))
      << screen_.LogText().toStdString();
  const QString question = screen_.BoxMessage();
  for (const QString& text : {QString("127.0.0.1, port %1").arg(port), "Serial number: " + number,
                              QString("Subject: CN=lidar"), QString("Valid: 20")}) {
    EXPECT_TRUE(question.contains(text)) << text.toStdString() << question.toStdString();
  }
  EXPECT_TRUE(WaitFor([&] { return screen_.FocusName() == "dialogReject"; }));
  EXPECT_FALSE(lidar->Output().contains("0xdf", Qt::CaseInsensitive))
      << "a stranger is asked for no authentication\n"
      << lidar->Output().toStdString();
  screen_.Click("dialogReject");
  EXPECT_FALSE(screen_.connected());

  screen_.Click("connectButton");
  ASSERT_TRUE(screen_.WaitForBox("a certificate that is not known on this computer"));
  const QString fingerprint = question.section("SHA-256:\n", 1).remove('\n');
  EXPECT_EQ(fingerprint.size(), 95);
  // What was shown is what is trusted, also when something else answers by then.
  lidar.reset();
  lidar = Lidar("other", port);
  screen_.Click("dialogAccept");
  ASSERT_TRUE(screen_.WaitForBox("The certificate of lidar " + number + " has changed: it was " +
                                 fingerprint + ", it is "))
      << screen_.LogText().toStdString();
  EXPECT_TRUE(screen_.Text("dialogAdvice").contains("trusted_lidars/serial_"));
  ASSERT_TRUE(screen_.CloseBox());
  EXPECT_FALSE(screen_.connected());

  lidar.reset();
  lidar = Lidar("lidar", port);
  screen_.Click("connectButton");
  ASSERT_TRUE(IsEncrypted()) << "without a question";
  EXPECT_EQ(screen_.BoxMessage(), QString());
  EXPECT_TRUE(screen_.Text("linkSecurity").contains(fingerprint))
      << screen_.Text("linkSecurity").toStdString();
  screen_.Click("connectButton");
  EXPECT_EQ(screen_.Find("linkSecurity"), nullptr);
}

}  // namespace
