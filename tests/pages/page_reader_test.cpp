#include "pages/page_reader.h"

#include "support/model_fixture.h"
#include "support/recorded_report.h"
#include "support/scripted_sender.h"

namespace {

using Lines = std::vector<std::string>;
using Sent = ScriptedSender::Sent;

constexpr char kRows[] =
    "1,1,0x30,,,Count,0,uint8,9,,,0.5,,Page,,0,,,\n"
    "1,2,0x30,,,Limit,1,int16,9,,,,,Page,,0,,,\n"
    "1,3,0x30,,,Part A,0,uint8,9,,,,,Page,,0,,0x01,\n"
    "1,4,0x30,,,Part B,0,uint8,9,,,,,Page,,0,,0x02,\n"
    "1,5,0x5A0102,,,Far,0,uint16,9,,,,,Page,,0,,0x07,\n"
    "1,6,,0x31,1,Only Set,1,raw,,,,,,Page,0,0,,,\n"
    "2,1,0x32,,,MAC,0,MAC,none,,,,,Page,5,0,,,\n"
    "2,2,0x33,0x34,1,Shape,1,raw,0102,,,,,Page,2,0,,,\n"
    "2,3,0x33,0x34,2,Odd,1,uint24,9,,,,,Page,3,0,,,\n";

class PageReaderTest : public testing::Test {
 protected:
  PageReaderTest() { state_.connected = true; }

  ReadGroup Vars(const std::vector<std::string>& names) const {
    ReadGroup vars;
    for (const std::string& name : names) {
      vars.push_back(&fixture_[name]);
    }
    return vars;
  }

  ModelFixture fixture_{kRows};
  ScriptedSender lidar_;
  LinkState state_;
  RecordedReport report_;
  ReadFailures failures_;
  PageReader reader_{lidar_, fixture_.table, state_, failures_, report_};
  std::string reason_;
};

TEST_F(PageReaderTest, SendsEachCommandOnceInKeyOrderAndCutsTheReplyUp) {
  lidar_.replies = {{0, {0x03, 0xFF, 0xFE}},    {0, {0x11}},      {0, {0x22}}, {0, {1, 2, 3, 4, 5}},
                    {0, {0xAB, 0xCD, 1, 2, 3}}, {0, {0x01, 0x02}}};
  const ReadGroup page =
      Vars({"Far", "Count", "Part B", "Only Set", "Limit", "Part A", "Shape", "MAC", "Odd"});
  fixture_.table.Edit(fixture_["Limit"], "55");
  reader_.Read(page, "test");
  EXPECT_EQ((std::vector<Sent>{{0x30, {}},
                               {0x30, {0x01}},
                               {0x30, {0x02}},
                               {0x32, {}},
                               {0x33, {}},
                               {0xFF, {0x5A, 0x01, 0x02, 0x07}}}),
            lidar_.sent);
  EXPECT_EQ(fixture_.Text("Count"), "1.50");
  EXPECT_EQ(fixture_.Text("Part A"), "17");
  EXPECT_EQ(fixture_.Text("Part B"), "34");
  EXPECT_EQ(fixture_.Text("Far"), "258");
  EXPECT_EQ(fixture_.Text("MAC"), "none");
  EXPECT_EQ((Bytes{0xAB, 0xCD}), fixture_.table.ValueOf(fixture_["Shape"]).bytes);
  EXPECT_EQ("", fixture_.Text("Shape")) << "the default is no reading";
  EXPECT_EQ((Bytes{1, 2, 3}), fixture_.table.ValueOf(fixture_["Odd"]).bytes);
  EXPECT_EQ("55", fixture_.Text("Limit"));  // an edit stays until it is dropped
  fixture_.table.DropEdits(Vars({"Limit"}));
  EXPECT_EQ(fixture_.Text("Limit"), "-2");
}

TEST_F(PageReaderTest, FailuresLeaveWhatWasThere) {
  const std::tuple<ScriptedSender::Reply, ReadOutcome, const char*> cases[] = {
      {{0, {0x02, 0x00, 0x07}}, ReadOutcome::kRead, nullptr},
      {{kavel::lidar::kNoReply, {}}, ReadOutcome::kNoAnswer, "no answer from the lidar"},
      {{3, {}}, ReadOutcome::kRefused, "lidar return code 3 (value out of range)"},
      {{0, {}}, ReadOutcome::kRefused, "the answer is empty"},
      // Long enough for the first variable, but who knows of which command it is.
      {{0, {4, 0}}, ReadOutcome::kRefused, "the answer is too short, 2 of 3 bytes"},
  };
  for (const auto& [reply, outcome, reason] : cases) {
    lidar_.replies = {reply};
    EXPECT_EQ(reader_.GetInfoFromLidarWithSameCmd(Vars({"Count", "Limit"}), &reason_), outcome);
    EXPECT_TRUE(reason == nullptr || reason_ == reason) << reason_;
    EXPECT_EQ(fixture_.Text("Count"), "1.00");
    EXPECT_EQ(fixture_.Text("Limit"), "7");
  }
  lidar_.replies = {{0, {0x04, 0x00}}, {0, {0x04, 0x00, 0x08}}};
  EXPECT_FALSE(reader_.GetInfoFromLidar(fixture_["Limit"]));
  EXPECT_TRUE(reader_.GetInfoFromLidar(fixture_["Limit"]));
}

TEST_F(PageReaderTest, SendsNothingWhenItMayNot) {
  const auto read = [this](const std::vector<std::string>& names) {
    return reader_.GetInfoFromLidarWithSameCmd(Vars(names), &reason_);
  };
  EXPECT_EQ(read({}), ReadOutcome::kNotSent);
  EXPECT_EQ(read({"Count", "Far"}), ReadOutcome::kNotSent);
  state_.upgrading = true;
  EXPECT_EQ(read({"Count"}), ReadOutcome::kNotSent);
  state_.upgrading = false;
  state_.connected = false;
  EXPECT_EQ(reader_.Read(Vars({"Count"}), "test").failed.size(), 1U);
  EXPECT_EQ(report_.Take(), Lines());
  state_.connected = true;
  EXPECT_EQ(reader_.Read(Vars({"Count", "MAC"}), "test", std::chrono::seconds(0)).left,
            Vars({"Count", "MAC"}));
  EXPECT_TRUE(lidar_.sent.empty());
}

TEST_F(PageReaderTest, GivesUpAfterTwoCommandsWithoutAnAnswerInARowAndSaysEachFailureOnce) {
  const ReadGroup page = Vars({"Count", "Part A", "Part B", "Far", "MAC", "Shape"});
  const std::deque<ScriptedSender::Reply> replies = {
      {kavel::lidar::kNoReply, {}},
      {5, {}},  // an answer: silence counts only when nothing comes between
      {kavel::lidar::kAuthRefused, {}},
      {kavel::lidar::kReplyBrokeOff, {}}};
  const Lines once = {
      "WARNING: Page: Count could not be read: no answer from the lidar.",
      "WARNING: Page: Part A could not be read: lidar return code 5 (authentication required).",
      ("WARNING: Page: Part B could not be read: authentication refused the command, the log says "
       "why."),
      "WARNING: Page: MAC could not be read: the lidar's answer broke off.",
      "WARNING: Page: Shape could not be read: no answer from the lidar.",
      ("WARNING: The lidar did not answer two read commands in a row. The rest of the page was not "
       "read.")};
  for (const Lines& lines : {once, Lines()}) {
    lidar_.sent.clear();
    lidar_.replies = replies;
    const Unread unread = reader_.Read(page, "test");
    EXPECT_EQ(lidar_.sent.size(), 5U);
    EXPECT_EQ(unread.failed.size(), 6U);
    EXPECT_FALSE(unread.answered);
    EXPECT_EQ(report_.Take(), lines);
  }
  lidar_.replies = {{0, {1}}, {5, {}}};
  reader_.Read(Vars({"Count"}), "test");
  reader_.Read(Vars({"Count"}), "test");
  EXPECT_EQ(report_.Take(), Lines{"WARNING: Page: Count could not be read: lidar return code 5 "
                                  "(authentication required)."});
}

}  // namespace
