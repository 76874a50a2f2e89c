#include "pages/page_writer.h"

#include "CmxClient/cmx_client.h"
#include "support/model_fixture.h"
#include "support/recorded_report.h"
#include "support/scripted_sender.h"

namespace {

using kavel::lidar::kNoReply;
using Lines = std::vector<std::string>;
using Sent = ScriptedSender::Sent;

constexpr char kRows[] =
    "1,1,0x20,0x21,1,IP Address,1,IP,192.168.1.201,,,,,Settings,,0,,,\n"
    "1,2,0x20,0x21,2,Port,1,uint16,9347,1..65535,,,,Settings,,0,,,\n"
    "2,1,0x30,0x31,1,Speed,1,uint16,600,,,,,Settings,,0,,,\n"
    "2,2,0x30,0x31,2,Offset,1,int16,0,,,0.5,,Settings,,0,,,\n"
    "2,3,0x30,0x31,3,Reserved,0,raw,,hidden,,,,Settings,3,0,,,\n"
    "2,4,0x32,0x31,4,Power,1,uint8,1,,,,,Other,,0,,0x09,\n"
    "3,1,0x5A0101,0x5A0102,1,Filter,1,uint8,1,,,,,Settings,,0,,,0x00FE\n"
    "4,1,0x40,0x41,1,Name,1,string,abc,,,,,Settings,4,0,,,\n"
    "5,1,,0x51,1,Trigger,1,raw,,,,,,Settings,0,0,,,\n"
    "6,1,,0x61,1,Wrong,1,uint8,1,,,,,Settings,,0,,,\n"
    "7,1,0x70,0x71,1,Whole,1,uint8,1,,,,,Settings,,0,,,\n"
    "7,,0x70,0x71,2,Broken,1,uint8,1,,,,,Settings,,0,,,\n"
    "8,1,0x2C,0X22,1,FOV Table,1,raw,,,,,,Settings,42,0,,,\n";

const char* const kNextAddress =
    "INFO: After its restart the lidar is reached at 10.0.0.9: use this address for the next "
    "connection.";
const char* const kAllSet =
    "success: Set Lidar Successfully\nNote that if you have changed the TCP-related settings, you "
    "will need to restart the lidar for it to work.";

using Outcome = PageWriter::Outcome;

class PageWriterTest : public testing::Test {
 protected:
  PageWriterTest() { state_.connected = true; }

  void Set(const std::string& name, const std::string& text) {
    edits_.SetText(EditSession::kTextInput, fixture_[name], text, report_);
  }
  /// Edits the variables, lets the lidar answer and saves the page. What was sent is what this
  /// sent.
  Outcome Save(const std::map<std::string, const char*>& edits,
               const std::deque<ScriptedSender::Reply>& replies = {}, int module = 0) {
    for (const auto& [name, text] : edits) {
      Set(name, text);
    }
    lidar_.replies = replies;
    lidar_.sent.clear();
    PageWriter writer({&lidar_, fixture_.table, fixture_.model->pages, state_, edits_.pending(),
                       edits_.fov(), failures_, report_});
    return writer.Run(module);
  }

  ModelFixture fixture_{kRows};
  ScriptedSender lidar_;
  LinkState state_;
  ReadFailures failures_;
  EditSession edits_{fixture_.table};
  RecordedReport report_;
};

TEST_F(PageWriterTest, LaysTheChangesOverWhatTheLidarHoldsNow) {
  // Speed and Offset were changed on the device too; what the user set wins, the rest is kept.
  const Bytes held = {0x00, 0x01, 0x00, 0x02, 0xAA, 0xBB, 0xCC};
  EXPECT_EQ(Save({{"Speed", "1200"}, {"Offset", "-1.5"}}, {{0, held}, {0, {0x07}}, {0, {}}}),
            Outcome::kWritten);
  const Bytes written = {0x04, 0xB0, 0xFF, 0xFD, 0xAA, 0xBB, 0xCC, 0x07};
  EXPECT_EQ(lidar_.sent, (std::vector<Sent>{{0x30, {}}, {0x32, {0x09}}, {0x31, written}}));
  EXPECT_EQ((Lines{"INFO: Send CMX command [0x31] to set Speed, Offset,  success.",
                   "success: CMX command [0x31] to set Speed, Offset,  success.", kAllSet}),
            report_.Take());
  EXPECT_TRUE(edits_.pending().empty());
  EXPECT_EQ(fixture_.table.ValueOf(fixture_["Speed"]).state, ValueState::kWritten);
  EXPECT_EQ(fixture_.table.ValueOf(fixture_["Power"]).state, ValueState::kRead);
  edits_.Clear();
  EXPECT_EQ(fixture_.Text("Offset"), "-1.5") << "what was accepted is the reading";
}

TEST_F(PageWriterTest, SendsTheNetworkSettingsLastAndTakesADroppedLinkForAnAnswer) {
  EXPECT_EQ(Save({{"IP Address", "10.0.0.9"}, {"Filter", "2"}},
                 {{0, {192, 168, 1, 201, 0x24, 0x83}}, {0, {1}}, {0, {}}, {kNoReply, {}}}),
            Outcome::kWritten);
  ASSERT_EQ(lidar_.sent.size(), 4U);
  EXPECT_EQ((Sent{0xFF, {0x5A, 0x01, 0x02, 0x00, 0xFE, 0x02}}), lidar_.sent[2]);
  EXPECT_EQ((Sent{0x21, {10, 0, 0, 9, 0x24, 0x83}}), lidar_.sent[3]);
  EXPECT_EQ(
      (Lines{"INFO: Send CMX command [0x5A0102] to set Filter,  success.",
             "success: CMX command [0x5A0102] to set Filter,  success.",
             "INFO: Send CMX command [0x21] to set IP Address,  success.", kNextAddress, kAllSet}),
      report_.Take());
}

TEST_F(PageWriterTest, AFailureInTheMiddleNamesWhatStaysApplied) {
  EXPECT_EQ(Save({{"Speed", "1200"}, {"Filter", "2"}, {"Port", "80"}},
                 {{0, Bytes(6)}, {0, Bytes(7)}, {0, {1}}, {0, {1}}, {0, {}}, {3, {}}}),
            Outcome::kFailed);
  EXPECT_EQ(6U, lidar_.sent.size());  // the network settings were not sent any more
  EXPECT_EQ((Lines{"INFO: Send CMX command [0x31] to set Speed,  success.",
                   "success: CMX command [0x31] to set Speed,  success.",
                   "INFO: Send CMX command [0x5A0102] to set Filter,  success.",
                   "WARNING: SET [0x5A0102] FAILED",
                   "error: Set Failed: 0x5A0102 SET Filter,  ret_code: " +
                       kavel::lidar::CmxClient::ErrorText(3),
                   "WARNING: Set 0x5A0102 Failed. Filter,  Detail: Command was sent.",
                   "WARNING: Already applied before the failure and still in force: [0x31]"}),
            report_.Take());
  EXPECT_TRUE(edits_.pending().empty());
}

TEST_F(PageWriterTest, TheFieldOfViewKeepsTheAnglesThatWereNotEdited) {
  for (const Bytes& unusable : {Bytes(), Bytes(42, 4), Bytes(41)}) {
    ASSERT_TRUE(edits_.SetFov(9, "1.5", report_));
    EXPECT_EQ(Save({}, {{0, unusable}}), Outcome::kFailed);
    EXPECT_EQ(lidar_.sent.size(), 1U) << "nothing is laid over unknown angles";
    EXPECT_EQ(report_.Take().at(unusable.size() == 42 ? 0 : 1),
              "error: Set Failed: The lidar's field-of-view table was not read, so that the other "
              "angles are not known.");
  }
  const Bytes head = Bytes{2, 5} + Bytes(36, 0x40);
  const Bytes held = head + Bytes(4, 0x40);
  ASSERT_TRUE(edits_.SetFov(9, "2.5", report_));
  EXPECT_EQ(Save({}, {{0, held}, {0, {}}}), Outcome::kWritten);
  EXPECT_EQ((std::vector<Sent>{{0x2C, {}}, {0x22, head + Bytes{0x40, 0x20, 0, 0}}}), lidar_.sent);
  EXPECT_EQ(report_.Take(), Lines{kAllSet});
  edits_.Clear();
  EXPECT_EQ(edits_.fov().Texts().back(), "2.5");

  ASSERT_TRUE(edits_.SetFov(9, "3", report_));
  EXPECT_EQ(Save({}, {{0, held}, {4, {}}}), Outcome::kFailed);
  EXPECT_EQ(report_.Take().at(1), "error: Set Failed: set channel fov failed");
}

TEST_F(PageWriterTest, SaysWhatIsWrongWithAVariable) {
  const auto expect_failure = [this](const char* name, const char* text, const std::string& why) {
    EXPECT_EQ(Save({{name, text}}), Outcome::kFailed);
    const Lines lines = report_.Take();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "error: Set Failed: " + why), 1)
        << why << testing::PrintToString(lines);
    edits_.Clear();
  };
  const std::string no_value = "Unknown error with this var: It has no current_val. var_name = ";
  fixture_.table.StoreReading(fixture_["Offset"], "1", {0, 1});
  fixture_.table.StoreBytes(fixture_["Reserved"], {0, 1, 2});
  expect_failure("Filter", "fast", "UintParser: contains an illegal number, error:fast");
  expect_failure("Name", "1", "Error with var type");
  expect_failure("Whole", "1", "line 13 of the table is broken");
  expect_failure("Wrong", "1",
                 "There are undefined cases in the csv config file where there is a line with "
                 "'set' and no 'get', but the var_type is not 'raw'.");
  expect_failure("Speed", "1", no_value + "Power");
  // Bytes of the lidar that was connected before are nothing to write to this one.
  fixture_.table.ForgetReadings();
  expect_failure("Speed", "1", no_value + "Offset");
  // A value of a length that is not its place's would shift what follows it.
  fixture_.table.StoreReading(fixture_["Offset"], "1", {0, 1});
  fixture_.table.StoreBytes(fixture_["Reserved"], {0, 1});
  expect_failure("Speed", "1", "Reserved takes 2 bytes, but its place in the command has 3.");
  EXPECT_EQ(lidar_.sent.size(), 2U) << "only the readings";
}

TEST_F(PageWriterTest, AReadingThatFailsIsNamedAndTheLastOneIsUsed) {
  Save({{"Speed", "1200"}}, {{0, {0, 1, 0, 2, 3, 4, 5}}, {0, {7}}, {0, {}}});
  report_.Take();
  EXPECT_EQ(Save({{"Speed", "1300"}}, {{5, {}}, {0, {8}}, {0, {}}}), Outcome::kWritten);
  EXPECT_EQ(report_.Take().at(1),
            "WARNING: The present values of [0x31] could not be read (lidar return code 5 "
            "(authentication required)): the "
            "last ones that were read go with it.");
  EXPECT_EQ(lidar_.sent.back().payload, (Bytes{0x05, 0x14, 0, 2, 3, 4, 5, 8}));
  // Silent before and silent now: nobody knows whether the lidar took its new address.
  Save({{"Port", "80"}}, {{0, {1, 2, 3, 4, 0, 5}}, {0, {}}});
  report_.Take();
  EXPECT_EQ(Save({{"Port", "81"}}, {{kNoReply, {}}, {kNoReply, {}}}), Outcome::kWritten);
  for (const std::string& line : report_.Take()) {
    EXPECT_EQ(line.find("After its restart"), std::string::npos) << line;
  }
  EXPECT_EQ(Save({{"Port", "82"}}, {{kNoReply, {}}, {kavel::lidar::kSendIncomplete, {}}}),
            Outcome::kNoAnswer);
  EXPECT_EQ(Save({{"Speed", "1"}}), Outcome::kNoAnswer);
}

TEST_F(PageWriterTest, RefusesInTheOrderOfItsGuards) {
  Set("Trigger", "1");
  state_.upgrading = state_.downloading = true;
  state_.connected = false;
  Save({});
  state_.connected = true;
  Save({});
  state_.upgrading = false;
  Save({});
  EXPECT_EQ((Lines{"error: Please connect to lidar first",
                   "error: Please wait for the lidar to upgrade completely",
                   "error: Please wait for the operation log to download completely"}),
            report_.Take());
  state_.downloading = false;
  EXPECT_EQ(Save({}, {}, -1), Outcome::kNothing);
  EXPECT_EQ(Save({}, {}, 2), Outcome::kNothing);
  EXPECT_EQ(Save({}, {{0, {}}}), Outcome::kWritten);
  EXPECT_EQ((std::vector<Sent>{{0x51, {}}}), lidar_.sent) << "what only triggers is sent empty";
}

}  // namespace
