#include "operations/range_check.h"

#include <gtest/gtest.h>

#include "model_fixture.h"
#include "support/recorded_report.h"

namespace {

using Lines = std::vector<std::string>;

constexpr char kRows[] =
    "1,1,0x30,0x31,1,Ranged,1,int16,5,-5..20,,0.5,,Page,,0,,,\n"
    "1,2,0x30,0x31,2,From Zero,1,uint8,5,0..20,,,,Page,,0,,,\n"
    "1,3,0x30,0x31,3,Free,1,uint8,5,,,,,Page,,0,,,\n"
    "1,4,0x30,0x31,4,Filter,1,uint8,5,switch:3..9,,,,Page,,0,,,\n"
    "1,5,0x30,0x31,5,Depending,1,uint8,5,1..9@1-4,,,,Page,,0,,,\n"
    "1,6,0x30,0x31,6,Label,1,string,abc,,,,,Page,4,0,,,\n"
    "1,7,0x30,0x31,7,Address,1,IP,1.2.3.4,,,,,Page,,0,,,\n"
    "1,8,0x30,0x31,8,Hardware,1,MAC,00:11:22:33:44:55,,,,,Page,,0,,,\n"
    "1,9,0x30,,,Shown,0,uint8,500,1..9,,,,Page,,0,,,\n"
    "1,10,0x30,0x31,9,Both,1,uint8,5,switch:3..9@1-4,,,,Page,,0,,,\n";

class RangeCheckTest : public testing::Test {
 protected:
  /// The names found wrong when `name` holds `text` and all others their default.
  Lines Wrong(const std::string& name, const std::string& text) {
    fixture_.table.Edit(fixture_[name], text);
    Lines names;
    const bool within = Check(&names);
    EXPECT_EQ(names.empty(), within) << name << " " << text;
    fixture_.table.DropEdits({&fixture_[name]});
    return names;
  }
  bool Check(Lines* names) {
    return check_.CheckPage(fixture_.table.InTableOrder(),
                            [names](const std::string& name) { names->push_back(name); });
  }
  bool WithinAlone(const std::string& name, const std::string& text) {
    fixture_.table.Edit(fixture_[name], text);
    return check_.CheckVar(fixture_[name]);
  }

  ModelFixture fixture_{kRows};
  RecordedReport report_;
  RangeCheck check_{fixture_.table, report_};
};

TEST_F(RangeCheckTest, BothEndsOfARangeAreAllowed) {
  EXPECT_EQ((Lines{}), Wrong("Ranged", "-5"));
  EXPECT_EQ((Lines{}), Wrong("Ranged", "20"));
  EXPECT_EQ((Lines{"Ranged"}), Wrong("Ranged", "-6"));
  EXPECT_EQ((Lines{"Ranged"}), Wrong("Ranged", "21"));
  EXPECT_EQ((Lines{"From Zero"}), Wrong("From Zero", "21"));
  EXPECT_EQ((Lines{}), Wrong("Free", "2000"));
  EXPECT_EQ((Lines{}), Wrong("Shown", "0"));  // read-only values are not the user's fault
}

TEST_F(RangeCheckTest, WhatASwitchHasOffIsNotTested) {
  EXPECT_EQ((Lines{}), Wrong("Filter", "0"));
  EXPECT_EQ((Lines{}), Wrong("Both", "0"));
  EXPECT_EQ((Lines{"Filter"}), Wrong("Filter", "2"));
  EXPECT_EQ((Lines{"Depending"}), Wrong("Depending", "10"));
  fixture_.table.Edit(fixture_["Filter"], "0");
  EXPECT_EQ((Lines{}), Wrong("Depending", "10"));
}

TEST_F(RangeCheckTest, TextsAndAddressesHaveTheirOwnRules) {
  EXPECT_EQ((Lines{}), Wrong("Label", "abcd"));
  EXPECT_EQ((Lines{"Label"}), Wrong("Label", "abcde"));
  EXPECT_EQ((Lines{}), Wrong("Address", "255.255.255.255"));
  for (const char* text : {"1.2.3", "1.2.3.256", "1.2.3.4.5", "1.2.3.4 ", "a.b.c.d"}) {
    EXPECT_EQ((Lines{"Address"}), Wrong("Address", text));
  }
  EXPECT_EQ((Lines{}), Wrong("Hardware", "aB:11:22:33:44:55"));
  for (const char* text : {"AB-11-22-33-44-55", "AB:11:22:33:44", "AB:11:22:33:44:5G"}) {
    EXPECT_EQ((Lines{"Hardware"}), Wrong("Hardware", text));
  }
}

TEST_F(RangeCheckTest, NamesEveryViolationInTheLog) {
  fixture_.table.Edit(fixture_["Ranged"], "21");
  fixture_.table.Edit(fixture_["Address"], "here");
  fixture_.table.Edit(fixture_["Hardware"], "there");
  Lines names;
  EXPECT_FALSE(Check(&names));
  EXPECT_EQ((Lines{"Ranged", "Address", "Hardware"}), names);
  EXPECT_EQ((Lines{"WARNING: Detected that the user set Ranged is out of range",
                   "WARNING: Detected that the user set Address has invalid IP format",
                   "WARNING: Detected that the user set Hardware has invalid MAC format"}),
            report_.Take());
}

TEST_F(RangeCheckTest, ATextThatIsNoNumberEndsTheCheck) {
  for (const char* text : {"abc", "", "99999999999"}) {
    fixture_.table.Edit(fixture_["Ranged"], text);
    fixture_.table.Edit(fixture_["Address"], "here");
    Lines names;
    EXPECT_FALSE(Check(&names));
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(1U, report_.Take().size());
    EXPECT_FALSE(check_.CheckVar(fixture_["Ranged"]));
  }
}

TEST_F(RangeCheckTest, AloneTheScaledValueCountsAndAZeroEndIsNoRange) {
  EXPECT_TRUE(WithinAlone("Ranged", "41.9"));  // 20.95 is cut to 20
  EXPECT_TRUE(WithinAlone("Ranged", "41.9 m"));
  EXPECT_FALSE(WithinAlone("Ranged", "42"));
  EXPECT_TRUE(WithinAlone("Ranged", "-11.9"));
  EXPECT_FALSE(WithinAlone("Ranged", "-12"));
  EXPECT_FALSE(WithinAlone("Ranged", "1e30"));
  EXPECT_TRUE(WithinAlone("From Zero", "21"));
  EXPECT_TRUE(WithinAlone("Label", "abcde"));
}

}  // namespace
