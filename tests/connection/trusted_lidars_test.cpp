#include "connection/trusted_lidars.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "support/test_folder.h"

namespace {

using Verdict = CertificateVerdict;

CertifiedLidar Lidar(const std::string& number, const std::string& place, char digit) {
  return {number, place, {std::string(64, digit), "CN=lidar", "", "2026-01-01", "2027-01-01"}};
}

class TrustedLidarsTest : public testing::Test {
 protected:
  Verdict Judge(const CertifiedLidar& lidar) {
    reason_.clear();
    remedy_.clear();
    return lidars_.Judge(lidar, &reason_, &remedy_);
  }
  QStringList Files() const { return QDir(path_).entryList(QDir::Files); }

  const TestFolder folder_;
  const QString path_ = QString::fromStdString(folder_.path()) + "/below/trusted";
  const TrustedLidars lidars_{path_};
  std::string reason_;
  std::string remedy_;
};

TEST_F(TrustedLidarsTest, EachIsKnownByItsNumberElseByItsPlace) {
  struct Step {
    CertifiedLidar lidar;
    Verdict verdict;
    bool then_remembered;
  };
  const std::string hostile = "../a_b/" + std::string(4000, '\xff');
  const Step steps[] = {
      {Lidar("SN1", "10.0.0.7", 'a'), Verdict::kUnknown, true},
      {Lidar("SN1", "10.0.0.7", 'a'), Verdict::kTrusted, false},
      {Lidar("SN1", "10.0.0.8", 'a'), Verdict::kTrusted, false},
      {Lidar("SN2", "10.0.0.7", 'a'), Verdict::kUnknown, false},
      {Lidar("", "10.0.0.7", 'a'), Verdict::kUnknown, true},
      {Lidar("", "10.0.0.7", 'a'), Verdict::kTrusted, false},
      {Lidar("10.0.0.7", "10.0.0.7", 'a'), Verdict::kUnknown, false},
      {Lidar("SN1", "10.0.0.7", 'b'), Verdict::kChanged, true},
      {Lidar("SN1", "10.0.0.7", 'b'), Verdict::kTrusted, false},
      {Lidar(hostile, "", 'a'), Verdict::kUnknown, true},
      {Lidar(hostile, "", 'a'), Verdict::kTrusted, false},
      {Lidar(hostile + 'x', "", 'a'), Verdict::kUnknown, false},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.lidar.serial_number.substr(0, 20) + " at " + step.lidar.place);
    EXPECT_EQ(Judge(step.lidar), step.verdict) << reason_;
    EXPECT_EQ(reason_.empty(), step.verdict == Verdict::kTrusted);
    if (step.then_remembered) {
      EXPECT_EQ(lidars_.Remember(step.lidar), "");
    }
  }
  EXPECT_EQ(Files().size(), 3) << "one for each lidar, and nothing else";
}

TEST_F(TrustedLidarsTest, AChangeIsToldWithBothFingerprintsAndTheWayToForget) {
  ASSERT_EQ(lidars_.Remember(Lidar("SN1", "", 'a')), "");
  const QString file = path_ + "/" + Files()[0];
  EXPECT_EQ(Judge(Lidar("SN1", "", 'b')), Verdict::kChanged);
  EXPECT_EQ(reason_.find("The certificate of lidar SN1 has changed: it was AA:AA:"), 0U) << reason_;
  EXPECT_NE(reason_.find("AA:AA, it is BB:BB:"), std::string::npos) << reason_;
  EXPECT_NE(remedy_.find("remove " + file.toStdString()), std::string::npos) << remedy_;

  // What cannot be read is no reason to ask anew as if nothing had been trusted.
  std::ofstream(file.toStdString()) << "[General]\nsha256=AA:AA\n";
  EXPECT_EQ(Judge(Lidar("SN1", "", 'a')), Verdict::kUnreadable);
  EXPECT_NE(remedy_.find(file.toStdString()), std::string::npos) << remedy_;
  ASSERT_TRUE(QFile::remove(file));
  ASSERT_TRUE(QFile::link("/nowhere", file));
  EXPECT_EQ(Judge(Lidar("SN1", "", 'a')), Verdict::kUnreadable);
  ASSERT_TRUE(QFile::remove(file));
  EXPECT_EQ(Judge(Lidar("SN1", "", 'b')), Verdict::kUnknown);
  EXPECT_NE(reason_.find("BB:BB (SHA-256), CN=lidar, valid from 2026-01-01 to 2027-01-01."),
            std::string::npos)
      << reason_;
  const std::string problem = TrustedLidars("/proc/none").Remember(Lidar("SN1", "", 'a'));
  EXPECT_EQ(problem.rfind("The certificate of lidar SN1 could not be remembered: "
                          "/proc/none/serial_SN1.ini: ",
                          0),
            0U)
      << problem;
}

}  // namespace
