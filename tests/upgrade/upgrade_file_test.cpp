#include "upgrade/upgrade_file.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

TEST(UpgradeFile, IsLookedAtBeforeAnythingIsSentOfIt) {
  const QTemporaryDir folder;
  const auto path = [&](const char* name) { return folder.filePath(name); };
  const auto write = [&](const char* name, const QByteArray& bytes, qint64 size) {
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
                file.resize(size));
  };
  QByteArray package = QByteArray("KVOT") + QByteArray(52, '\0') + "123";
  package[8] = 0x11;  // the first and the last component
  package[16] = 2;    // size of the first
  package[44] = 2;    // place of the last
  package[48] = 1;
  write("image", "x", 3);
  write("empty", "", 0);
  write("largest", "", 64 << 20);
  write("larger", "", (64 << 20) + 1);
  write("package", package, package.size());
  write("header", package, 55);
  const struct {
    QUrl url;
    bool package;
    const char* problem;
    size_t components;
  } cases[] = {
      {QUrl::fromLocalFile(path("image")), false, "", 0},
      {QUrl::fromLocalFile(path("largest")), false, "", 0},
      {QUrl::fromLocalFile(path("package")), true, "", 2},
      {QUrl::fromLocalFile(path("larger")), false,
       "The file cannot be used: it is larger than 64 MiB.", 0},
      {QUrl::fromLocalFile(path("empty")), true, "The file is empty.", 0},
      {QUrl::fromLocalFile(path("none")), false, "The file cannot be used: there is no such file.",
       0},
      {QUrl("http://localhost/image"), false,
       "Only a file of this computer can be sent to the lidar.", 0},
      {QUrl::fromLocalFile(path("header")), true,
       "This is no upgrade package: It is shorter than a package's header.", 0},
      {QUrl::fromLocalFile(path("largest")), true,
       "This is no upgrade package: Invalid OTA package magic.", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.url.toString().toStdString());
    const UpgradeFileFacts facts = InspectUpgradeFile(c.url, c.package);
    EXPECT_EQ(facts.problem, c.problem);
    EXPECT_EQ(facts.components.size(), c.components);
    const UpgradeFile file = ReadUpgradeFile(c.url);
    EXPECT_EQ(file.bytes.empty(), !file.problem.empty());
    EXPECT_EQ(file.bytes.empty() ? 0 : file.size_bytes, file.bytes.size());
  }
  const auto last = InspectUpgradeFile(QUrl::fromLocalFile(path("package")), true).components[1];
  EXPECT_EQ(last.name, "TMB_PARAM");
  EXPECT_EQ(last.size_bytes, 1U);
}

}  // namespace
