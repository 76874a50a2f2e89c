#include "console/command_console.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QVariantMap>

#include "support/recorded_report.h"
#include "support/scripted_sender.h"

namespace {

using Family = CommandConsole::Family;
using Lines = std::vector<std::string>;
using Sent = ScriptedSender::Sent;

class Console : public testing::Test {
 protected:
  Console() { state_.connected = true; }

  CommandConsole::Outcome Send(const QString& command, const QString& payload,
                               Family family = Family::kCmx) {
    return console_.Send(&lidar_, state_, family, command, payload);
  }

  ScriptedSender lidar_;
  LinkState state_;
  RecordedReport report_;
  CommandConsole console_{report_};
};

TEST_F(Console, KeepsTheLowBytesOfHexadecimalNumbersAndTellsWhatTheyDo) {
  const std::tuple<const char*, const char*, Sent, const char*> cases[] = {
      {"0x21", "01  02", {0x21, {1, 2}}, ""},  // two blanks are one gap
      {"0X2c", " fF 0x1FF ", {0x2C, {0xFF, 0xFF}}, ""},
      {"7fffff10", "7FFFFFFF", {0x10, {0xFF}}, "Lidar restart."},
      {"25", "   ", {0x25, {}}, "Lidar reset."},
  };
  for (const auto& [command, payload, sent, success] : cases) {
    lidar_.replies = {{0, {}}};
    lidar_.sent.clear();
    EXPECT_EQ(Send(command, payload).success, success);
    EXPECT_EQ(lidar_.sent, std::vector<Sent>{sent}) << command;
  }
}

TEST_F(Console, NamesWhatCannotBeReadAndSendsNothing) {
  const std::array<const char*, 4> cases[] = {
      {"", "01", "header", "Invalid_argument\n"},
      {"2G", "01", "header", "Invalid_argument\n"},
      {"80000000", "01", "header", "Out_of_range\n"},
      {"21", "01,02", "payload", "Invalid_argument\n"},
      {"21", "01 80000000", "header", "Out_of_range\n"},  // any number out of range, on purpose
  };
  for (const auto& [command, payload, culprit, printed] : cases) {
    testing::internal::CaptureStdout();
    Send(command, payload);
    Send(command, payload, Family::kSerial);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string(printed) + printed);
    const std::string rest = std::string(culprit) + " was entered. Parsing failed.";
    EXPECT_EQ(report_.Take(),
              (Lines{"error: Incorrect CMX " + rest, "error: Incorrect Serial " + rest}));
  }
  EXPECT_TRUE(lidar_.sent.empty());
}

TEST_F(Console, ShowsHeaderAndPayloadUpTo1024Bytes) {
  lidar_.replies = {{0, {0xAB, 0x01}}, {7, {}}, {0, Bytes(1016, 0x11)}, {0, Bytes(1017, 0x22)}};
  Send("0x2c", "");
  EXPECT_EQ(console_.ReturnHeader(), "47 74 2c 00 00 00 00 02");
  EXPECT_EQ(console_.ReturnPayload(), "ab 01");
  EXPECT_EQ(Send("0x10", "").success, "") << "a refused restart is shown, not announced";
  EXPECT_EQ(console_.ReturnHeader(), "47 74 10 07 00 00 00 00");
  Send("1", "");
  EXPECT_EQ(console_.ReturnPayload().size(), 1016 * 3 - 1);
  EXPECT_EQ(report_.Take(), Lines());
  Send("1", "");
  EXPECT_EQ(console_.ReturnPayload().size(), 1016 * 3 - 1);
  EXPECT_EQ(report_.Take(),
            Lines{"error: WARNING: This return payload is too long, only the first 1024 bytes are "
                  "displayed. For a complete payload please use the log bytes flow function."});
  Send("1", "");
  EXPECT_EQ(console_.ReturnHeader(), "");
  EXPECT_EQ(report_.Take(), Lines{"error: Query cmx command fail. Please input right cmx command "
                                  "header and payload."});
}

TEST_F(Console, RemembersTheLastTenAnsweredAsTypedNewestFirst) {
  lidar_.replies.assign(11, {0, {}});
  for (int i = 1; i <= 12; ++i) {
    Send(QString("0X%1").arg(i), "01  02");
  }
  const QVariantList history = console_.History();
  ASSERT_EQ(history.size(), 10);
  EXPECT_EQ(history.first().toMap()["send_cmd_history"], "0X11");
  EXPECT_EQ(history.last().toMap()["send_cmd_history"], "0X2");
  EXPECT_EQ(history.first().toMap()["send_payload_history"], "01  02");
  EXPECT_TRUE(QRegularExpression("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$")
                  .match(history.first().toMap()["record_time"].toString())
                  .hasMatch());
}

TEST_F(Console, DoesNothingWhileTheLidarMayNotBeAsked) {
  EXPECT_FALSE(console_.Send(nullptr, state_, Family::kCmx, "7", "").attempted);
  for (std::atomic<bool> LinkState::*flag :
       {&LinkState::upgrading, &LinkState::downloading, &LinkState::applying}) {
    state_.*flag = true;
    EXPECT_FALSE(Send("zz", "").attempted);
    state_.*flag = false;
  }
  state_.connected = false;
  EXPECT_FALSE(Send("7", "").attempted);
  EXPECT_TRUE(lidar_.sent.empty());
}

}  // namespace
