#include "CmxClient/device_commands.h"
#include "Wire/big_endian.h"
#include "Wire/crc32.h"
#include "Wire/file_piece.h"
#include "Wire/firmware_stream.h"
#include "firmware_file.h"
#include "lidar_under_test.h"

namespace {

using kavel::lidar::AfterImage;
using kavel::lidar::BuildFilePiece;
using kavel::lidar::BuildStreamBegin;
using kavel::lidar::BuildStreamEnd;
using kavel::lidar::BuildStreamPiece;
using kavel::lidar::Crc32Ieee;
using kavel::lidar::DescribeImage;

const FirmwareVersion kNew = {"2.8.0", "2026-11-21"};
constexpr char kVersionRow[] = "1,1,0x30,,,SWVER_YMD,0,raw,2026-09-02 r5.12.0.3,,,,,,16\n";

class Upgrade : public testing::Test {
 protected:
  void Become(const char* model, SerialFamily family = SerialFamily::kNone) {
    DeviceProfile profile;
    profile.model = model;
    profile.family = family;
    device_ = std::make_unique<VirtualDevice>(LoadRows(kVersionRow), std::move(profile));
  }
  int Answer(uint8_t code, const Bytes& payload = {}, uint32_t client = 1) {
    DeviceRequest request;
    request.code = code;
    request.payload = payload;
    request.client = client;
    request.long_frame = code >= kavel::lidar::kCmdStreamBegin;
    last_ = Ask(device_.get(), request);
    return last_.return_code;
  }
  int Piece(const Bytes& file, size_t number, uint32_t client = 1) {
    return Answer(kavel::lidar::kCmdFirmwarePiece, BuildFilePiece(file, number), client);
  }
  int Begin(uint8_t type, const Bytes& image) {
    return Answer(kavel::lidar::kCmdStreamBegin, BuildStreamBegin(DescribeImage(type, image)));
  }
  int Stream(uint8_t type, const Bytes& image, uint32_t number) {
    return Answer(kavel::lidar::kCmdStreamPiece, BuildStreamPiece(type, image, number));
  }
  int End(uint8_t type, const Bytes& image, AfterImage then = AfterImage::kStay) {
    return Answer(kavel::lidar::kCmdStreamEnd, BuildStreamEnd(DescribeImage(type, image), then));
  }
  std::string Shown() { return *device_->memory().TextOf("SWVER_YMD"); }
  const FirmwareUnit& firmware() const { return device_->firmware(); }

  std::unique_ptr<VirtualDevice> device_;
  DeviceReply last_;
};

TEST_F(Upgrade, TakesPiecesInOrderAndShowsTheVersionAfterTheRestart) {
  Become("Orca");
  const Bytes image = MakeFirmware("Orca", SerialFamily::kNone, kNew, 3073);
  const Bytes longer = MakeFirmware("Orca", SerialFamily::kNone, kNew, 5120);
  const Bytes foreign = MakeFirmware("Osprey", SerialFamily::kNone, kNew, 3072);
  Bytes damaged = image;
  damaged[3000] ^= 1;
  const struct {
    const Bytes& file;
    size_t number;
    int code;
    uint32_t client = 1;
  } steps[] = {
      {image, 2, kOutOfOrder},  {foreign, 1, kForeignImage}, {image, 1, kAccepted},
      {image, 1, kAccepted},    {image, 3, kOutOfOrder},     {image, 2, kAccepted},
      {image, 2, kAccepted},    {longer, 3, kOutOfOrder},    {image, 3, kOutOfOrder, 2},
      {damaged, 3, kAccepted},  {image, 4, kBadImage},       {image, 4, kBadImage},
      {image, 1, kAccepted, 2}, {image, 1, kAccepted},       {image, 2, kOutOfOrder, 2},
      {image, 2, kAccepted},    {image, 3, kAccepted},       {image, 4, kAccepted},
      {image, 4, kAccepted},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(&step - steps);
    EXPECT_EQ(Piece(step.file, step.number, step.client), step.code);
  }
  EXPECT_EQ(Shown(), "2026-09-02 r5.12.0.3");
  EXPECT_EQ(Piece(longer, 1), kAccepted);
  EXPECT_TRUE(device_->TakeChanged() && firmware().half_image());
  Answer(kavel::lidar::kCmdRestart);
  EXPECT_TRUE(device_->TakeChanged() && !firmware().half_image());
  Answer(kavel::lidar::kCmdFactoryReset);
  EXPECT_EQ(Shown(), "2026-11-21 r2.8.0.0");
  EXPECT_EQ(Piece(longer, 2), kOutOfOrder);
  std::string error;
  EXPECT_TRUE(device_->Preset("SWVER_YMD", "2020-01-02 r1.2.3.4", &error));
  EXPECT_EQ(firmware().running().number, "1.2.3.4");
}

TEST_F(Upgrade, RefusesAHeaderThatIsNotAsItHasToBe) {
  Become("Orca");
  const Bytes image = MakeFirmware("Orca", SerialFamily::kNone, kNew, 100);
  const size_t places[] = {0, 8, 23, 24, 39, 42, 44, 45, 51};
  for (const size_t at : places) {
    Bytes changed = image;
    changed[at] ^= 0x80;
    EXPECT_EQ(Piece(changed, 1), kForeignImage) << at;
    kavel::lidar::WriteBigEndian32(changed.data() + 60, Crc32Ieee(changed.data(), 60));
    EXPECT_EQ(Piece(changed, 1), kForeignImage) << at;
  }
}

TEST_F(Upgrade, TakesAStreamInAnyOrderAndJudgesItAtTheEnd) {
  Become("Kiva-CMX", SerialFamily::kKiva);
  const auto app = kavel::lidar::kApplicationImage;
  const Bytes image = MakeImage({"Kiva-CMX", kNew, app}, 10000);
  EXPECT_EQ(Begin(app, image), kNotAllowedNow);
  Answer(3, {1, 0});
  EXPECT_EQ(Stream(app, image, 1), kOutOfOrder);
  EXPECT_EQ(Begin(app, image), kAccepted);
  EXPECT_EQ(Stream(app, image, 3), kAccepted);
  EXPECT_EQ(last_.payload, (Bytes{0, 0, 0, 3}));
  EXPECT_EQ(Stream(app, image, 1), kAccepted);
  EXPECT_EQ(Piece(image, 2), kOutOfOrder) << "the two ways do not mix";
  EXPECT_EQ(Stream(kavel::lidar::kTopBoardFpga, image, 2), kOutOfOrder);
  EXPECT_EQ(Stream(app, Bytes(20000, 1), 4), kBadValue);
  EXPECT_EQ(Stream(app, Bytes(9000, 1), 3), kBadLength);
  EXPECT_EQ(End(app, image), kBadImage) << "a piece is missing";
  EXPECT_EQ(Stream(app, image, 2), kAccepted);
  EXPECT_EQ(End(app, Bytes(10000, 1)), kBadImage) << "another image than the one begun";
  EXPECT_EQ(End(app, image, AfterImage::kRestart), kAccepted);
  EXPECT_EQ(last_.aftermath, Aftermath::kRestart);
  EXPECT_EQ(Answer(0x53), kAccepted);
  EXPECT_EQ(last_.payload, Bytes{1});
  EXPECT_EQ(Shown(), "2026-11-21 r2.8.0.0");
  EXPECT_EQ(End(app, image, AfterImage::kRestart), kAccepted) << "its answer was lost";
  EXPECT_EQ(last_.aftermath, Aftermath::kNone);

  Answer(3, {1, 0});
  EXPECT_EQ(Begin(kavel::lidar::kBaseBoardFpga, image), kAccepted);
  EXPECT_EQ(Stream(kavel::lidar::kBaseBoardFpga, image, 1), kForeignImage);
  EXPECT_EQ(Begin(app, image), kAccepted);
  Answer(3, {0, 0});
  EXPECT_FALSE(firmware().half_image());
}

}  // namespace
