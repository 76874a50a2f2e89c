#include "pages/edit_session.h"

#include "support/bytes.h"
#include "support/model_fixture.h"
#include "support/recorded_report.h"

namespace {

using Lines = std::vector<std::string>;

constexpr char kRows[] =
    "1,1,0x30,0x31,1,Limit,1,uint8,5,1..9,,,,Page,,0,,,\n"
    "1,2,0x30,0x31,2,Filter,1,uint8,0,switch:3..9,,,,Page,,0,,,\n"
    "1,4,0x30,0x33,2,Mode,1,uint8,10,10|20|30,,,Low|Mid|High,Page,,0,,,\n"
    "1,5,0x30,,,Reading,0,uint8,1,,,,,Page,,0,,,\n"
    "2,1,0x2C,34,1,FOV,1,raw,,,,,,FOV,42,0,,,\n";

class EditSessionTest : public testing::Test {
 protected:
  void Set(int kind, const std::string& name, const std::string& text) {
    session_.SetText(kind, fixture_[name], text, report_);
  }

  ModelFixture fixture_{kRows};
  EditSession session_{fixture_.table};
  RecordedReport report_;
};

TEST_F(EditSessionTest, EditsMarkTheirCommandUntilTheyAreDropped) {
  Set(EditSession::kTextInput, "Limit", "77");
  Set(EditSession::kSwitchInput, "Filter", "1");
  Set(EditSession::kOptionInput, "Mode", "2");
  EXPECT_EQ(fixture_.Text("Mode"), "30");
  EXPECT_EQ((PendingCommands{"0x31", "0x33"}), session_.pending());
  session_.DropEdits({&fixture_["Filter"]});
  EXPECT_EQ((PendingCommands{"0x31", "0x33"}), session_.pending()) << "Limit is still edited";
  session_.DropEdits({&fixture_["Limit"]});
  EXPECT_EQ(fixture_.Text("Limit"), "5");
  EXPECT_EQ((PendingCommands{"0x33"}), session_.pending());
  session_.Clear();
  EXPECT_EQ(fixture_.Text("Mode"), "10");
  EXPECT_TRUE(session_.pending().empty());
}

TEST_F(EditSessionTest, TheTextThatTheLidarHoldsIsNoEdit) {
  Set(EditSession::kTextInput, "Limit", "5");
  EXPECT_EQ((PendingCommands{"0x31"}), session_.pending()) << "a default is no reading";
  fixture_.table.StoreReading(fixture_["Limit"], "7", {7});
  EXPECT_EQ(fixture_.table.ValueOf(fixture_["Limit"]).reading, "7");
  Set(EditSession::kTextInput, "Filter", "9");
  Set(EditSession::kTextInput, "Limit", "7.5");
  EXPECT_TRUE(fixture_.table.ValueOf(fixture_["Limit"]).edited);
  Set(EditSession::kTextInput, "Limit", "7.0");
  EXPECT_FALSE(fixture_.table.ValueOf(fixture_["Limit"]).edited);
  EXPECT_EQ((PendingCommands{"0x31"}), session_.pending()) << "Filter is still edited";
  session_.DropEdits({&fixture_["Filter"]});
  EXPECT_TRUE(session_.pending().empty());
}

TEST_F(EditSessionTest, ASwitchComesBackWithItsLastValue) {
  Set(EditSession::kSwitchInput, "Filter", "1");
  EXPECT_EQ(fixture_.Text("Filter"), "3");
  Set(EditSession::kTextInput, "Filter", "8");
  Set(EditSession::kSwitchInput, "Filter", "0");
  EXPECT_EQ(fixture_.Text("Filter"), "0");
  Set(EditSession::kTextInput, "Filter", "0");  // what the screen also does when it switches off
  Set(EditSession::kSwitchInput, "Filter", "1");
  EXPECT_EQ(fixture_.Text("Filter"), "8");
}

TEST_F(EditSessionTest, InputWithoutMeaningChangesNothingAndIsReported) {
  for (const char* option : {"3", "-1", "first"}) {
    Set(EditSession::kOptionInput, "Mode", option);
  }
  EXPECT_EQ(report_.Take().front(), "error: Mode: there is no option number \"3\".");
  Set(EditSession::kTextInput, "Reading", "2");
  Set(9, "Limit", "2");
  EXPECT_EQ(report_.Take().size(), 2U);
  EXPECT_TRUE(session_.pending().empty());
}

TEST_F(EditSessionTest, AnglesAreTakenInsideTheirLimits) {
  for (const char* text : {"361", "-1", "abc", "", "nan", "360.1"}) {
    EXPECT_FALSE(session_.SetFov(0, text, report_));
    EXPECT_EQ((Lines{"error: Input value of fov is invalid"}), report_.Take()) << text;
  }
  EXPECT_FALSE(session_.SetFov(10, "5", report_));
  EXPECT_FALSE(session_.SetFov(-1, "5", report_));
  EXPECT_TRUE(session_.pending().empty());

  EXPECT_TRUE(session_.SetFov(9, "360", report_));
  EXPECT_TRUE(session_.SetFov(0, "0", report_));
  EXPECT_TRUE(session_.SetFov(1, "12.25", report_));
  EXPECT_EQ((PendingCommands{"34"}), session_.pending());
  EXPECT_EQ(session_.fov().Texts(), (Lines{"0", "12.25", "", "", "", "", "", "", "", "360"}));
  EXPECT_FALSE(session_.fov().ToSend()) << "nothing is laid over angles that nobody knows";

  Bytes held = {0x02, 0x05};
  for (int i = 0; i < 10; ++i) {
    held.insert(held.end(), {0x40, 0xF0, 0x00, 0x00});  // 7.5
  }
  fixture_.table.StoreBytes(fixture_["FOV"], held);
  EXPECT_EQ(session_.fov().Texts(),
            (Lines{"0", "12.25", "7.5", "7.5", "7.5", "7.5", "7.5", "7.5", "7.5", "360"}));
  EXPECT_EQ(session_.fov().ToSend()->mode, 2);
  for (const int index : {0, 1, 9}) {
    EXPECT_EQ((PendingCommands{"34"}), session_.pending());
    EXPECT_TRUE(session_.SetFov(index, "7.50", report_));
  }
  EXPECT_TRUE(session_.pending().empty()) << "the old angles take the edits back";
  EXPECT_TRUE(session_.SetFov(3, "8", report_));
  session_.DropEdits({&fixture_["FOV"]});
  EXPECT_EQ(session_.fov().Texts(), Lines(10, "7.5"));
  held[1] = 4;  // another count is no table
  fixture_.table.StoreBytes(fixture_["FOV"], held);
  EXPECT_EQ(session_.fov().Texts(), Lines(10, ""));
}

}  // namespace
