// Requests on a serial line whose answers come late, twice, damaged, behind an echo or not at all.
// The line has a thread and a port of its own, whose time no test can turn: the orders are short,
// and no answer has to be there in time, save the last. On a busy machine a damaged one may come
// after its time and spoil the exchange that follows, but none behind that.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "CmxClient/cmx_client.h"
#include "CmxClient/serial_cmx_transport.h"
#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"
#include "support/serial_device.h"

namespace kavel::lidar {
namespace {

using testing::SerialDevice;

constexpr int kFated = 3;
constexpr uint32_t kShortWaitMs = 10;
constexpr uint32_t kPatienceMs = 10000;

enum Fate { kInTime, kLate, kTwice, kLost, kDamaged, kEchoed, kFates };

/// Answers with the payload of the request, whose first byte tells what becomes of the answer. One
/// that is late comes in front of the next.
class Device {
 public:
  const std::string& path() const { return device_.path(); }

 private:
  Bytes Answer(const Bytes& frame) {
    OtaRequest request;
    Bytes answer;
    if (ParseOtaFrame(frame, &request)) {
      answer = BuildOtaFrame(OtaAnswer{request.number, request.cmd, 0, request.payload});
    } else if (ParseSerialRequest(frame, &request.cmd, &request.payload)) {
      answer = BuildSerialAnswer(request.cmd, 0, request.payload);
    }
    Bytes sent = std::exchange(late_, {});
    switch (request.payload.at(0)) {
      case kLate:
        late_ = answer;
        return sent;
      case kLost:
        return sent;
      case kTwice:
        return sent + answer + answer;
      case kDamaged:
        answer[answer.size() / 2] ^= 1;
        return sent + answer;
      case kEchoed:
        return sent + frame + answer;
      default:
        return sent + answer;
    }
  }

  Bytes late_;  // used on the device's thread alone
  SerialDevice device_{[this](const Bytes& frame) { return Answer(frame); }};
};

// Short requests have no number, so that each has a code of its own.
TEST(SerialOrder, NoRequestEverGetsTheAnswerToAnother) {
  Device device;
  const auto source = std::make_shared<SerialSource>(device.path(), 921600, kReceiveAnswers);
  ASSERT_TRUE(source->Open()) << source->LastError();
  CmxClient client(
      std::make_shared<SerialCmxTransport>(std::make_shared<SerialClient>(source, source)), 1,
      kPatienceMs, kPatienceMs);
  constexpr int kOrders = kFates * kFates * kFates;
  uint8_t number = 0;
  for (const size_t size : {2U, 300U}) {
    for (int order = 0; order < kOrders; ++order) {
      int fates = order;
      for (int i = 0; i <= kFated + 1; ++i, fates /= kFates) {
        Bytes payload(size);
        payload[0] = static_cast<uint8_t>(fates % kFates);
        payload[1] = ++number;
        const auto cmd = static_cast<uint8_t>(size == 2 ? 0x40 + i : 0x40);
        Bytes result = payload;
        int32_t error = 0;
        const int32_t got = client.QueryWithin(i < kFated ? kShortWaitMs : kPatienceMs, payload,
                                               result, cmd, &error);
        ASSERT_TRUE(got == 0 || i <= kFated)
            << "order " << order << ": " << CmxClient::ErrorText(error);
        ASSERT_EQ(result, payload) << "order " << order << ", request " << i;
      }
    }
  }
}

}  // namespace
}  // namespace kavel::lidar
