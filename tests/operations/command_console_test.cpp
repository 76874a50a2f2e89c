#include "operations/command_console.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QVariantMap>
#include <thread>

#include "operations/byte_flow.h"
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
  /// What Send prints on standard output.
  std::string PrintedBy(const QString& command, const QString& payload,
                        Family family = Family::kCmx) {
    testing::internal::CaptureStdout();
    EXPECT_TRUE(Send(command, payload, family).attempted);
    return testing::internal::GetCapturedStdout();
  }

  ScriptedSender lidar_;
  LinkState state_;
  RecordedReport report_;
  CommandConsole console_{report_};
};

TEST_F(Console, ReadsHexadecimalNumbersAndKeepsTheirLowBytes) {
  struct Case {
    const char* command;
    const char* payload;
    Sent sent;
  };
  const Case cases[] = {
      {"0x21", "01  02", {0x21, {1, 2}}},  // two blanks are one gap
      {"0X2c", " fF 0x1FF ", {0x2C, {0xFF, 0xFF}}},
      {"7fffff10", "7FFFFFFF", {0x10, {0xFF}}},
      {"07", "", {0x07, {}}},
      {"7", "   ", {0x07, {}}},
  };
  for (const Case& c : cases) {
    lidar_.replies = {{0, {}}};
    lidar_.sent.clear();
    EXPECT_TRUE(Send(c.command, c.payload).attempted);
    EXPECT_EQ(lidar_.sent, std::vector<Sent>{c.sent}) << c.command;
  }
  EXPECT_EQ(report_.Take(), Lines());
}

TEST_F(Console, NamesWhatCannotBeReadAndSendsNothing) {
  struct Case {
    const char* command;
    const char* payload;
    const char* culprit;
    const char* printed;
  };
  const Case cases[] = {
      {"", "01", "header", "Invalid_argument\n"},
      {"zz", "01", "header", "Invalid_argument\n"},
      {"2G", "01", "header", "Invalid_argument\n"},
      {"80000000", "01", "header", "Out_of_range\n"},
      {"21", "01 zz", "payload", "Invalid_argument\n"},
      {"21", "01,02", "payload", "Invalid_argument\n"},
      {"21", "01 80000000", "header", "Out_of_range\n"},  // any number out of range, on purpose
  };
  for (const Case& c : cases) {
    EXPECT_EQ(PrintedBy(c.command, c.payload), c.printed);
    EXPECT_EQ(PrintedBy(c.command, c.payload, Family::kSerial), c.printed);
    const std::string rest = std::string(c.culprit) + " was entered. Parsing failed.";
    EXPECT_EQ(report_.Take(),
              (Lines{"error: Incorrect CMX " + rest, "error: Incorrect Serial " + rest}));
  }
  EXPECT_TRUE(lidar_.sent.empty());
  EXPECT_TRUE(console_.History().isEmpty());
}

TEST_F(Console, ShowsHeaderAndPayload) {
  lidar_.replies = {{0, {0xAB, 0x01}}, {0, {}}, {7, {}}};
  Send("0x2c", "");
  EXPECT_EQ(console_.ReturnHeader(), "47 74 2c 00 00 00 00 02");
  EXPECT_EQ(console_.ReturnPayload(), "ab 01");
  Send("0x2c", "");
  EXPECT_EQ(console_.ReturnHeader(), "47 74 2c 00 00 00 00 00");
  EXPECT_EQ(console_.ReturnPayload(), "");
  EXPECT_EQ(Send("0x10", "").success, "") << "a refused restart is shown, not announced";
  EXPECT_EQ(console_.ReturnHeader(), "47 74 10 07 00 00 00 00");

  EXPECT_EQ(PrintedBy("0x2c", ""), "query command failed!\n");
  EXPECT_EQ(console_.ReturnHeader(), "");
  EXPECT_EQ(report_.Take(), Lines{"error: Query cmx command fail. Please input right cmx command "
                                  "header and payload."});
  EXPECT_EQ(console_.History().size(), 3) << "what got no reply is not remembered";
}

TEST_F(Console, ShowsAtMost1024BytesOfAReplyWithItsHeader) {
  lidar_.replies = {{0, Bytes(1016, 0x11)}, {0, Bytes(1017, 0x22)}, {0, Bytes(1992, 0x33)}};
  Send("1", "");
  EXPECT_EQ(console_.ReturnPayload().size(), 1016 * 3 - 1);
  EXPECT_EQ(report_.Take(), Lines());
  for (int i = 0; i < 2; ++i) {
    Send("1", "");
    EXPECT_EQ(console_.ReturnPayload().size(), 1016 * 3 - 1);
    EXPECT_EQ(report_.Take(),
              Lines{"error: WARNING: This return payload is too long, only the first 1024 bytes "
                    "are displayed. For a complete payload please use the log bytes flow "
                    "function."});
  }
}

TEST_F(Console, RemembersTheLastTenAsTypedNewestFirst) {
  for (int i = 1; i <= 11; ++i) {
    lidar_.replies = {{0, {}}};
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

TEST_F(Console, TellsWhatRestartAndResetDo) {
  lidar_.replies = {{0, {}}, {0, {}}, {0, {}}};
  EXPECT_EQ(Send("10", "").success, "Lidar restart.");
  EXPECT_EQ(Send("0x25", "").success, "Lidar reset.");
  EXPECT_EQ(Send("0x26", "").success, "");
}

TEST_F(Console, DoesNothingWhileTheLidarMayNotBeAsked) {
  EXPECT_FALSE(console_.Send(nullptr, state_, Family::kCmx, "7", "").attempted);
  lidar_.open = false;
  EXPECT_FALSE(Send("7", "").attempted);
  lidar_.open = true;
  for (std::atomic<bool> LinkState::*flag : {&LinkState::upgrading, &LinkState::downloading}) {
    state_.*flag = true;
    EXPECT_FALSE(Send("zz", "").attempted);
    state_.*flag = false;
  }
  state_.connected = false;
  EXPECT_FALSE(Send("7", "").attempted);
  EXPECT_TRUE(lidar_.sent.empty());
}

TEST(ByteFlow, ShowsAndCountsOnlyWhileSwitchedOn) {
  RecordedReport report;
  ByteFlowSink sink(report);
  sink.WriteLine("SEND: 47");
  sink.SetOn(true);
  sink.WriteLine("SEND: 47 74");
  sink.WriteLine("RECV: 47 74");
  {
    const ByteFlowMute check;
    sink.WriteLine("SEND: 07");
    std::thread([&sink] { sink.WriteLine("SEND: 2c"); }).join();
  }
  EXPECT_EQ(report.Take(),
            (Lines{"BYTESFLOW: SEND: 47 74", "BYTESFLOW: RECV: 47 74", "BYTESFLOW: SEND: 2c"}));
  EXPECT_EQ(sink.CommandCount(), 2);
}

}  // namespace
