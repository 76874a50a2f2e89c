#include "pages/range_check.h"

#include "support/model_fixture.h"
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
  void Edit(const std::string& name, const std::string& text) {
    fixture_.table.Edit(fixture_[name], text);
  }
  /// Whether the page is within its ranges; `names_` are those that it finds wrong.
  bool PageIsWithin() {
    names_.clear();
    return check_.CheckPage(fixture_.table.InTableOrder(),
                            [this](const std::string& name) { names_.push_back(name); });
  }

  ModelFixture fixture_{kRows};
  RecordedReport report_;
  RangeCheck check_{fixture_.table, report_};
  Lines names_;
};

TEST_F(RangeCheckTest, EachVariableHasItsRule) {
  constexpr bool kOnPage = false;
  constexpr bool kAlone = true;  // the scaled value counts, and an end of 0 is no range
  using Texts = std::vector<const char*>;
  const std::tuple<const char*, bool, Texts, Texts> cases[] = {
      {"Ranged", kOnPage, {"-5", "20"}, {"-6", "21"}},
      {"Ranged", kAlone, {"41.9", "41.9 m", "-11.9"}, {"42", "-12", "1e30"}},  // 20.95 is cut to 20
      {"From Zero", kOnPage, {"20"}, {"21"}},
      {"From Zero", kAlone, {"21"}, {}},
      {"Free", kOnPage, {"2000"}, {}},
      {"Shown", kOnPage, {"0"}, {}},  // read-only values are not the user's fault
      {"Filter", kOnPage, {"0", "3"}, {"2"}},
      {"Both", kOnPage, {"0"}, {}},
      {"Depending", kOnPage, {"9"}, {"10"}},
      {"Label", kOnPage, {"abcd"}, {"abcde"}},
      {"Label", kAlone, {"abcde"}, {}},
      {"Address", kOnPage, {"255.255.255.255"}, {"1.2.3", "1.2.3.256", "1.2.3.4.5", "1.2.3.4 "}},
      {"Hardware", kOnPage, {"aB:11:22:33:44:55"}, {"AB-11-22-33-44-55", "AB:11:22:33:44:5G"}},
  };
  for (const auto& [name, alone, good, bad] : cases) {
    for (const bool is_good : {true, false}) {
      for (const char* text : is_good ? good : bad) {
        Edit(name, text);
        EXPECT_EQ(is_good, alone ? check_.CheckVar(fixture_[name]) : PageIsWithin())
            << name << ' ' << text;
      }
    }
    fixture_.table.DropEdits({&fixture_[name]});
  }
  Edit("Filter", "0");
  Edit("Depending", "10");
  EXPECT_TRUE(PageIsWithin()) << "what a switch has off is not tested";
}

TEST_F(RangeCheckTest, NamesEveryViolationInTheLog) {
  Edit("Ranged", "21");
  Edit("Address", "here");
  Edit("Hardware", "there");
  EXPECT_FALSE(PageIsWithin());
  EXPECT_EQ((Lines{"Ranged", "Address", "Hardware"}), names_);
  EXPECT_EQ((Lines{"WARNING: Detected that the user set Ranged is out of range",
                   "WARNING: Detected that the user set Address has invalid IP format",
                   "WARNING: Detected that the user set Hardware has invalid MAC format"}),
            report_.Take());
}

TEST_F(RangeCheckTest, ATextThatIsNoNumberEndsTheCheck) {
  Edit("Address", "here");
  for (const char* text : {"abc", "", "99999999999"}) {
    Edit("Ranged", text);
    EXPECT_FALSE(PageIsWithin());
    EXPECT_TRUE(names_.empty());
    EXPECT_EQ(report_.Take().size(), 1U);
    EXPECT_FALSE(check_.CheckVar(fixture_["Ranged"]));
  }
}

}  // namespace
