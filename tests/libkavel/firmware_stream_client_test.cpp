#include "CmxClient/firmware_stream_client.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <thread>

#include "CmxClient/command_sender.h"
#include "CmxClient/stream_window.h"
#include "Wire/serial_frame.h"
#include "support/serial_device.h"
#include "support/wait_for.h"

namespace kavel::lidar {
namespace {

using testing::SerialDevice;

// What is lost here is lost on purpose, and has to be noticed soon.
constexpr uint32_t kAnswerMs = 500;

// What the device does with a request instead of taking it; above 0: refuses it so.
enum Deed : int { kLoses = -1, kTakesInSilence = -2, kVanishes = -3, kAnswersAmidNoise = -4 };

struct Deviation {
  uint8_t cmd;
  uint32_t piece;  ///< 0 for begin and end
  int times;       ///< that it arrives so, until it is taken
  int deed;
};

// A device in upgrade mode that puts the pieces together, and the line to it.
class Bench {
 public:
  Bench(size_t size, std::vector<Deviation> deviations)
      : image(MakeImage(size)), got_(size), deviations_(std::move(deviations)) {
    auto source = std::make_shared<SerialSource>(device_.path(), 115200, kReceiveAnswers);
    EXPECT_TRUE(source->Open()) << source->LastError();
    line = std::make_unique<SerialClient>(source, source);
  }

  int32_t Stream() {
    return StreamFirmware(*line, image, kApplicationImage, AfterImage::kRestart, &progress,
                          kAnswerMs);
  }

  const Bytes image;
  std::unique_ptr<SerialClient> line;
  std::atomic<int> progress{100};
  std::atomic<int> deviated{0};
  std::atomic<bool> was_taken{false};
  std::atomic<bool> was_interrupted{false};  ///< something else came before the end

 private:
  static Bytes MakeImage(size_t size) {
    Bytes made(size);
    for (size_t i = 0; i < size; ++i) {
      made[i] = static_cast<uint8_t>(i * 7 + i / kStreamPieceSize);
    }
    return made;
  }

  int DeedFor(uint8_t cmd, uint32_t piece) {
    const int arrival = ++arrivals_[{cmd, piece}];
    for (const Deviation& each : deviations_) {
      if (each.cmd == cmd && each.piece == piece && arrival <= each.times) {
        ++deviated;
        return each.deed;
      }
    }
    return 0;
  }

  Bytes Take(const Bytes& frame) {
    OtaRequest request;
    if (!ParseOtaFrame(frame, &request)) {
      was_interrupted = was_interrupted || !was_taken;
      return BuildSerialAnswer(0x4B, 0, {});
    }
    StreamPiece piece;
    ParseStreamPiece(request.payload, &piece);
    const bool is_piece = request.cmd == kCmdStreamPiece;
    const int deed = DeedFor(request.cmd, is_piece ? piece.number : 0);
    OtaAnswer answer = {request.number, request.cmd, static_cast<uint8_t>(std::max(deed, 0)), {}};
    if (deed == kLoses || deed == kVanishes) {
      return deed == kLoses ? Bytes() : SerialDevice::kVanish;
    }
    if (deed <= 0 && is_piece) {
      std::copy_n(piece.data, piece.size, &got_[(piece.number - 1) * kStreamPieceSize]);
      answer.payload = BuildStreamAck(piece.number);
    }
    if (deed <= 0 && request.cmd == kCmdStreamEnd) {
      was_taken = got_ == image;
      answer.return_code = was_taken ? kAccepted : kBadImage;
    }
    if (deed == kTakesInSilence) {
      return {};
    }
    Bytes sound = BuildOtaFrame(answer);
    if (deed != kAnswersAmidNoise) {
      return sound;
    }
    // The echo of the line, what a transfer before this one has left, the beginning of a frame
    // that never ends, and the answer twice.
    return frame + BuildOtaFrame(OtaAnswer{200, kCmdStreamPiece, kForeignImage, {}}) +
           BuildOtaFrame(OtaAnswer{201, kCmdStreamPiece, 0, BuildStreamAck(2)}) +
           FromHex("244c444f54412c fff0") + sound + sound;
  }

  Bytes got_;
  std::vector<Deviation> deviations_;
  std::map<std::pair<uint8_t, uint32_t>, int> arrivals_;
  SerialDevice device_{[this](const Bytes& frame) { return Take(frame); }};
};

TEST(FirmwareStreamClient, BringsTheImageWholeOrTellsWhyNot) {
  constexpr uint8_t kBegin = kCmdStreamBegin;
  constexpr uint8_t kPiece = kCmdStreamPiece;
  constexpr uint8_t kEnd = kCmdStreamEnd;
  using Deviations = std::vector<Deviation>;
  const Deviations lost = {{kPiece, 1, 2, kLoses},
                           {kPiece, 2, 1, kTakesInSilence},
                           {kPiece, 5, 3, kDamagedPiece},
                           {kPiece, 12, 1, kDamagedPiece}};
  const Deviations noise = {{kBegin, 0, 1, kAnswersAmidNoise},
                            {kPiece, 3, 1, kAnswersAmidNoise},
                            {kEnd, 0, 1, kAnswersAmidNoise}};
  const Deviations ends_lost = {{kBegin, 0, 1, kLoses}, {kEnd, 0, 1, kTakesInSilence}};
  const std::tuple<const char*, size_t, Deviations, int32_t> cases[] = {
      {"one byte", 1, {}, 0},
      {"one whole piece", 4096, {}, 0},
      {"a piece and a byte", 4097, {}, 0},
      {"frame numbers come again", 300 * kStreamPieceSize - 1000, {{kPiece, 255, 1, kLoses}}, 0},
      {"lost and damaged pieces, lost answers", 12 * kStreamPieceSize, lost, 0},
      {"the line is noisy", 5 * kStreamPieceSize + 1, noise, 0},
      {"the first request and the last answer are lost", 5000, ends_lost, 0},
      {"never arrives sound", 6 * kStreamPieceSize, {{kPiece, 2, 4, kDamagedPiece}}, kDamagedPiece},
      {"lost four times amid others", 20 * kStreamPieceSize, {{kPiece, 2, 4, kLoses}}, kNoReply},
      {"not in upgrade mode", 1, {{kBegin, 0, 1, kNotAllowedNow}}, kNotAllowedNow},
      {"for another model", 6 * kStreamPieceSize, {{kPiece, 1, 1, kForeignImage}}, kForeignImage},
      {"not sound as a whole", 4096, {{kEnd, 0, 1, kBadImage}}, kBadImage},
      {"the adapter is pulled out",
       6 * kStreamPieceSize,
       {{kPiece, 3, 1, kVanishes}},
       kNotConnected},
  };
  for (const auto& [what, size, deviations, result] : cases) {
    SCOPED_TRACE(what);
    Bench bench(size, deviations);
    EXPECT_EQ(bench.Stream(), result);
    EXPECT_EQ(bench.was_taken, result == 0);
    EXPECT_TRUE(result != 0 || bench.progress == 100 + static_cast<int>((size + 1023) / 1024));
  }
}

TEST(FirmwareStreamClient, HasTheLineForItselfAndEndsWhenItIsInterrupted) {
  Bench bench(40 * kStreamPieceSize, {});
  std::thread other([&] {
    EXPECT_TRUE(testing::WaitFor([&] { return bench.progress > 100; }));
    Bytes inner;
    EXPECT_EQ(bench.line->SendCommand(0x4B, {}, inner, 5000), 0);
    EXPECT_EQ(bench.line->SetBaudRate(921600, 0), 0);
  });
  EXPECT_EQ(bench.Stream(), 0);
  other.join();
  EXPECT_FALSE(bench.was_interrupted);
  EXPECT_EQ(StreamFirmware(*bench.line, {}, kApplicationImage, AfterImage::kStay, nullptr),
            kBadArgument);

  Bench silent(6 * kStreamPieceSize,
               {{kCmdStreamPiece, 3, 99, kLoses}, {kCmdStreamPiece, 4, 99, kLoses}});
  std::thread user([&] {
    EXPECT_TRUE(testing::WaitFor([&] { return silent.deviated > 0; }));
    silent.line->Interrupt();
  });
  EXPECT_EQ(silent.Stream(), kNotConnected);
  user.join();
}

StreamWindow::Time At(int ms) { return StreamWindow::Time(std::chrono::milliseconds(ms)); }

TEST(StreamWindow, TellsSlowFromLostByTheOrderOfTheLine) {
  StreamWindow window(6);
  for (uint8_t piece = 1; piece <= 4; ++piece) {
    EXPECT_EQ(window.Next(), piece);
    window.Sent(piece, piece, At(10 * piece));
  }
  EXPECT_EQ(window.Next(), 0U) << "four are on their way";
  EXPECT_EQ(window.Expire(At(10)), Bytes{1});
  EXPECT_EQ(window.Next(), 1U);
  window.Sent(1, 5, At(50));
  EXPECT_TRUE(window.Acknowledged(1, 1)) << "the first sending was only slow";
  EXPECT_TRUE(window.Acknowledged(2, 2));
  EXPECT_FALSE(window.Acknowledged(2, 2)) << "twice";
  EXPECT_FALSE(window.Acknowledged(4, 7)) << "of another image: shows nothing";
  EXPECT_FALSE(window.Acknowledged(99, 4)) << "was never sent";
  EXPECT_EQ(window.Next(), 5U);
  EXPECT_FALSE(window.Acknowledged(5, 1)) << "the second sending of 1, which overtook 3 and 4";
  EXPECT_EQ(window.Next(), 3U);
  window.Sent(3, 6, At(60));
  window.Damaged(3);
  EXPECT_EQ(window.Next(), 4U) << "the newer sending of 3 may still do";
  window.Sent(4, 7, At(70));
  EXPECT_EQ(window.NextDue(), At(60));
  for (uint8_t frame = 8; frame < 10; ++frame) {
    window.Damaged(static_cast<uint8_t>(frame - 1));
    EXPECT_EQ(window.Next(), 3U) << "4 came damaged, so 3 is lost";
    window.Sent(3, 6, At(80));
    EXPECT_EQ(window.Next(), 4U);
    window.Sent(4, frame, At(80));
  }
  EXPECT_EQ(window.failure(), 0);
  window.Damaged(9);
  EXPECT_EQ(window.failure(), kDamagedPiece) << "four times";
  EXPECT_EQ(window.Next(), 0U);
  EXPECT_FALSE(window.Done());
}

}  // namespace
}  // namespace kavel::lidar
