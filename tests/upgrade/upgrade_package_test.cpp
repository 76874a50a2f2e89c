#include "upgrade/upgrade_package.h"

#include <gtest/gtest.h>

#include "support/bytes.h"

namespace {

constexpr char kHead[] = "4b564f54 78563412";

/// A package with these flags and component entries (little-endian offset and size each), and
/// `data_size` bytes that count up behind the header.
Bytes Package(const std::string& flags, const std::string& entries, size_t data_size) {
  Bytes package = FromHex(kHead) + FromHex(flags) + Bytes(3) + FromHex(entries);
  package.resize(kUpgradeHeaderSize);
  for (size_t i = 0; i < data_size; ++i) {
    package.push_back(static_cast<uint8_t>(i));
  }
  return package;
}

std::string Parse(const Bytes& package, UpgradePackageHeader* header) {
  std::string said;
  const bool parsed = ParseUpgradePackage(
      package, *header, [&said](const std::string& text) { said += text + "\n"; });
  return parsed ? "parsed\n" + said : said;
}

TEST(UpgradePackage, NamesWhatIsWrongInItsOrder) {
  const std::string none = "0000000000000000";
  Bytes other_magic = Package("01", "0000000001000000", 1);
  other_magic[3] = 't';
  const std::pair<Bytes, const char*> cases[] = {
      {Bytes(55), ""},
      {other_magic, "Invalid OTA package magic\n"},
      {Package("21", "0000000001000000", 1), "Invalid OTA component flags\n"},
      {Package("00", "0000000001000000", 1), "No component found in package\n"},
      {Package("01", "0100000000000000", 1), "Component BMB_APP_A size is zero\n"},
      {Package("02", none + "0200000001000000", 1), "Component BMB_APP_B is out of file range\n"},
      {Package("04", none + none + "01000000ffffffff", 4),
       "Component BMB_FPGA is out of file range\n"},
      {Package("18", none + none + none + "0400000004000000 0000000005000000", 8),
       "Component overlap\n"},
      {Package("18", none + none + none + "0400000004000000 0000000004000000", 8), "parsed\n"},
  };
  for (const auto& [package, said] : cases) {
    UpgradePackageHeader header;
    EXPECT_EQ(Parse(package, &header), said);
  }
  UpgradePackageHeader header;
  ASSERT_EQ(Parse(Package("03", "0100000002000000 0300000001000000", 4), &header), "parsed\n");
  EXPECT_EQ(header.word, 0x12345678U);
  EXPECT_EQ(header.flags, 3);
  EXPECT_EQ(header.components[kBmbAppA].offset, 1U);
  EXPECT_EQ(header.components[kBmbAppA].size, 2U);
  EXPECT_TRUE(header.components[kBmbAppB].present && !header.components[kTmbParam].present);
}

TEST(UpgradePackage, CutsComponentsOutAndTheFrontOffGateArrays) {
  const Bytes package = Package("01", "0000000001000000", 1030);
  struct Case {
    UpgradeComponent component;
    const char* name;
    Bytes out;
    const char* said;
  };
  const Case cases[] = {
      {{2, 3, true}, "BMB_APP_A", {2, 3, 4}, ""},
      {{3, 1025, true}, "TMB_FPGA", {3}, ""},
      {{0, 1026, true}, "BMB_FPGA", {0, 1}, ""},
      {{1030, 1, true}, "TMB_PARAM", {}, "Component TMB_PARAM data out of range"},
      {{0xFFFFFFFF, 0xFFFFFFFF, true}, "BMB_APP_B", {}, "Component BMB_APP_B data out of range"},
  };
  const auto extract = [](const Bytes& from, const Case& c, Bytes* out) {
    std::string said;
    const bool done = ExtractComponent(from, c.component, c.name, *out,
                                       [&said](const std::string& text) { said = text; });
    EXPECT_EQ(done, said.empty());
    return said;
  };
  for (const Case& c : cases) {
    Bytes out;
    EXPECT_EQ(extract(package, c, &out), c.said);
    EXPECT_EQ(out, c.out) << c.name;
  }
  Bytes out;
  extract(package, {{0, 1024, true}, "TMB_FPGA", {}, ""}, &out);
  EXPECT_EQ(out.size(), 1024U);
  EXPECT_EQ(extract(Bytes(55), cases[0], &out), "Component BMB_APP_A package too small");
}

}  // namespace
