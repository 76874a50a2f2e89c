#include "console/byte_flow.h"

#include <gtest/gtest.h>

#include "support/bytes.h"
#include "support/recorded_report.h"

namespace {

TEST(ByteFlow, ShowsAndCountsCommandsAndNeverTheSecretKey) {
  RecordedReport report;
  const auto flow = std::make_shared<ByteFlow>(report);
  // Read by a long command with a fixed payload, written by a short one.
  ByteFlowSink sink(flow, {{0xFF, {0x12, 0x34, 0x01}}, {0x44, {}}});
  const auto exchange = [&sink](uint8_t cmd, const Bytes& payload, const Bytes& answer) {
    sink.Sent({cmd, payload}, Bytes{0x47, 0x74, cmd} + payload);
    answer.empty() ? sink.Failed(-2) : sink.Received(answer);
  };
  exchange(0x07, {}, {1});
  flow->SetOn(true);
  exchange(0x07, {}, {0x5A});
  exchange(0xFF, {0x12, 0x34, 0x02}, {1});
  exchange(0xFF, {0x12, 0x34, 0x01, 0x00}, {0xAA, 0xBB});
  exchange(0x44, {0xAA, 0xBB}, {});
  exchange(0x07, {}, {0xAA, 0xBB});  // the late answer to the one before
  exchange(0x07, {}, {3});
  flow->SetOn(false);
  exchange(0x07, {}, {1});
  const std::string hidden = " bytes, not shown: they may hold a key";
  EXPECT_EQ(report.Take(), (std::vector<std::string>{
                               "BYTESFLOW: SEND: 47 74 07", "BYTESFLOW: RECV: 5a",            //
                               "BYTESFLOW: SEND: 47 74 ff 12 34 02", "BYTESFLOW: RECV: 01",   //
                               "BYTESFLOW: SEND: 7" + hidden, "BYTESFLOW: RECV: 2" + hidden,  //
                               "BYTESFLOW: SEND: 5" + hidden, "BYTESFLOW: RECV: ret_code is -2",
                               "BYTESFLOW: SEND: 47 74 07", "BYTESFLOW: RECV: 2" + hidden,  //
                               "BYTESFLOW: SEND: 47 74 07", "BYTESFLOW: RECV: 03"}));
  EXPECT_EQ(flow->CommandCount(), 6);
}

}  // namespace
