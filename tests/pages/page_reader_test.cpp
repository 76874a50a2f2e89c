#include "pages/page_reader.h"

#include <gtest/gtest.h>

#include "support/model_fixture.h"
#include "support/recorded_report.h"
#include "support/scripted_sender.h"

namespace {

using Sent = ScriptedSender::Sent;

constexpr char kRows[] =
    "1,1,0x30,,,Count,0,uint8,9,,,0.5,,Page,,0,,,\n"
    "1,2,0x30,,,Limit,1,int16,9,,,,,Page,,0,,,\n"
    "1,3,0x30,,,Part A,0,uint8,9,,,,,Page,,0,,0x01,\n"
    "1,4,0x30,,,Part B,0,uint8,9,,,,,Page,,0,,0x02,\n"
    "1,5,0x5A0102,,,Far,0,uint16,9,,,,,Page,,0,,0x07,\n"
    "1,6,,0x31,1,Only Set,1,raw,,,,,,Page,0,0,,,\n"
    "2,1,0x32,,,MAC,0,MAC,none,,,,,Page,5,0,,,\n"
    "2,2,0x33,0x34,1,Shape,1,raw,,,,,,Page,2,0,,,\n";

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
  PageReader reader_{lidar_, fixture_.table, state_, report_};
};

TEST_F(PageReaderTest, SendsEachCommandOnceInKeyOrderAndCutsTheReplyUp) {
  lidar_.replies = {{0, {0x03, 0xFF, 0xFE}}, {0, {0x11}},       {0, {0x22}},
                    {0, {1, 2, 3, 4, 5}},    {0, {0xAB, 0xCD}}, {0, {0x01, 0x02}}};
  const ReadGroup page =
      Vars({"Far", "Count", "Part B", "Only Set", "Limit", "Part A", "Shape", "MAC"});
  fixture_.table.Edit(fixture_["Limit"], "55");
  reader_.Read(page, "test");
  EXPECT_EQ((std::vector<Sent>{{0x30, {}},
                               {0x30, {0x01}},
                               {0x30, {0x02}},
                               {0x32, {}},
                               {0x33, {}},
                               {0xFF, {0x5A, 0x01, 0x02, 0x07}}}),
            lidar_.sent);
  EXPECT_EQ("1.50", fixture_.Text("Count"));
  EXPECT_EQ("17", fixture_.Text("Part A"));
  EXPECT_EQ("34", fixture_.Text("Part B"));
  EXPECT_EQ("258", fixture_.Text("Far"));
  EXPECT_EQ("none", fixture_.Text("MAC"));
  EXPECT_EQ((Bytes{0xAB, 0xCD}), fixture_.table.ValueOf(fixture_["Shape"]).bytes);
  EXPECT_EQ("55", fixture_.Text("Limit"));  // an edit stays until it is dropped
  fixture_.table.DropEdits(Vars({"Limit"}));
  EXPECT_EQ("-2", fixture_.Text("Limit"));
}

TEST_F(PageReaderTest, FailuresLeaveWhatWasThere) {
  struct Case {
    ScriptedSender::Reply reply;
    ReadOutcome outcome;
    const char* count;
  };
  const Case cases[] = {
      {{0, {0x02, 0x00, 0x07}}, ReadOutcome::kRead, "1.00"},
      {{kavel::lidar::kNoReply, {}}, ReadOutcome::kNoAnswer, "1.00"},
      {{3, {}}, ReadOutcome::kRefused, "1.00"},
      {{0, {}}, ReadOutcome::kRefused, "1.00"},
      {{0, {0x04, 0x00}}, ReadOutcome::kRead, "2.00"},  // too short for the second variable only
  };
  for (const Case& c : cases) {
    lidar_.replies = {c.reply};
    EXPECT_EQ(c.outcome, reader_.GetInfoFromLidarWithSameCmd(Vars({"Count", "Limit"})));
    EXPECT_EQ(c.count, fixture_.Text("Count"));
    EXPECT_EQ("7", fixture_.Text("Limit"));
  }
  lidar_.replies = {{0, {0x04, 0x00}}, {0, {0x04, 0x00, 0x08}}};
  EXPECT_FALSE(reader_.GetInfoFromLidar(fixture_["Limit"]));
  EXPECT_TRUE(reader_.GetInfoFromLidar(fixture_["Limit"]));
}

TEST_F(PageReaderTest, SendsNothingWhenItMayNot) {
  EXPECT_EQ(ReadOutcome::kNotSent, reader_.GetInfoFromLidarWithSameCmd({}));
  EXPECT_EQ(ReadOutcome::kNotSent, reader_.GetInfoFromLidarWithSameCmd(Vars({"Count", "Far"})));
  state_.upgrading = true;
  EXPECT_EQ(ReadOutcome::kNotSent, reader_.GetInfoFromLidarWithSameCmd(Vars({"Count"})));
  state_.upgrading = false;
  state_.connected = false;
  EXPECT_EQ(ReadOutcome::kNotSent, reader_.GetInfoFromLidarWithSameCmd(Vars({"Count"})));
  EXPECT_TRUE(lidar_.sent.empty());
}

TEST_F(PageReaderTest, GivesUpAfterTwoCommandsWithoutAnAnswerInARow) {
  // Refused commands are answers; silence counts only when nothing comes between.
  lidar_.replies = {{kavel::lidar::kNoReply, {}},
                    {5, {}},
                    {kavel::lidar::kAuthRefused, {}},
                    {kavel::lidar::kReplyBrokeOff, {}}};
  reader_.Read(Vars({"Count", "Part A", "Part B", "Far", "MAC", "Shape"}), "test");
  EXPECT_EQ(5U, lidar_.sent.size());
  EXPECT_EQ((std::vector<std::string>{"WARNING: The lidar did not answer two read commands in a "
                                      "row. The rest of the page was not read."}),
            report_.Take());
}

}  // namespace
