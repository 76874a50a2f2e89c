#include <memory>

#include "CmxClient/device_commands.h"
#include "CmxClient/fov_command.h"
#include "Wire/calibration.h"
#include "Wire/firmware_stream.h"
#include "Wire/point_packet.h"
#include "auth/authorized_cmx_client.h"
#include "fuzz/fuzz_keys.h"
#include "fuzz/fuzz_targets.h"
#include "support/scripted_sender.h"

using namespace kavel::lidar;

namespace {

void CheckMaintenance(ScriptedSender& sender, const Bytes& answer) {
  const auto ask = [&](auto command) {
    sender.replies = {{0, answer}};
    const int32_t code = command();
    Require(code == 0 || code == kBadReply, "an answer is taken or has a wrong length");
    return code == 0;
  };
  uint32_t rate = 0;
  Destination destination;
  NetConfig net;
  std::string text;
  DeviceVersions versions;
  std::vector<SafetyState> states;
  DeviceStatus status;
  bool is_b = false;
  Bytes calibration;
  ask([&] { return GetBaudRate(sender, &rate); });
  if (ask([&] { return GetDestination(sender, &destination); })) {
    sender.sent.clear();
    sender.replies = {{0, {}}};
    Require(SetDestination(sender, destination) == 0 && sender.sent[0].payload == answer,
            "a destination is written as it was read");
  }
  if (ask([&] { return GetNetConfig(sender, &net); }) && net.vlan_id <= kMaxVlanId &&
      answer[12] <= 1) {
    sender.sent.clear();
    sender.replies = {{0, {}}};
    Require(SetNetConfig(sender, net) == 0 && sender.sent[0].payload == answer,
            "network settings are written as they were read");
  }
  if (ask([&] { return GetSerialNumber(sender, &text); })) {
    Require(text.size() <= kNumberTextSize, "a number is bounded");
    IsValidNumber(text);
  }
  ask([&] { return GetPartNumber(sender, &text); });
  ask([&] { return GetPblVersion(sender, &text); });
  ask([&] { return GetVersions(sender, &versions); });
  if (ask([&] { return GetFunctionSafety(sender, &states); })) {
    Require(states.size() * 4 <= answer.size(), "no more states than were told");
  }
  ask([&] { return GetStatus(sender, &status); });
  ask([&] { return GetActivePartition(sender, &is_b); });
  if (ask([&] { return GetCalibration(sender, &calibration); })) {
    Require(IsCalibration(calibration) && calibration == answer,
            "a calibration is handed on whole");
  }
}

void CheckLayouts(const Bytes& bytes) {
  std::array<float, 10> degrees{};
  uint8_t mode = 0;
  if (ParseFovTable(bytes, &degrees, &mode)) {
    Require(BuildFovTable(degrees, kFovPairs, mode) == bytes,
            "a FOV table is built as it was read");
  }
  StreamImage image;
  StreamPiece piece;
  AfterImage then{};
  uint32_t number = 0;
  if (ParseStreamBegin(bytes, &image) == kAccepted) {
    Require(BuildStreamBegin(image) == bytes, "a beginning is built as it was read");
  }
  if (ParseStreamEnd(bytes, &image, &then) == kAccepted) {
    Require(BuildStreamEnd(image, then) == bytes, "an end is built as it was read");
  }
  if (ParseStreamPiece(bytes, &piece) == kAccepted) {
    Require(piece.data >= bytes.data() && piece.data + piece.size <= bytes.data() + bytes.size(),
            "a piece lies in its payload");
  }
  if (ParseStreamAck(bytes, &number)) {
    Require(BuildStreamAck(number) == bytes, "an answer to a piece is built as it was read");
  }
}

void CheckPointPacket(const Bytes& bytes) {
  const auto number = PointPacketNumber(bytes.data(), bytes.size());
  if (number) {
    Require(bytes.size() >= kPointPacketHead, "a head is whole");
    const Bytes head = BuildPointPacketHead(*number, 0);
    Require(head.size() == kPointPacketHead && std::equal(&head[0], &head[8], bytes.begin()),
            "the head of a packet is built as it was read");
  }
}

void CheckCalibration(const Bytes& bytes) {
  std::vector<ChannelAngles> channels(bytes.size() % 256);
  for (size_t i = 0; i < channels.size(); ++i) {
    channels[i].elevation_cdeg = static_cast<int16_t>(bytes[i] << 8U);
  }
  Bytes calibration = BuildCalibration(channels);
  Require(IsCalibration(calibration), "a calibration is one");
  calibration[bytes.empty() ? 0 : bytes[0] % calibration.size()] ^= 0x10;
  Require(!IsCalibration(calibration), "a damaged one is none");
}

int32_t Signed(uint8_t byte) { return byte < 0xF0 ? byte : byte - 0x100; }

/// Probe, then a protected command whose handshake gets two more answers.
void CheckHandshake(FuzzInput input) {
  const auto sender = std::make_shared<ScriptedSender>();
  AuthConfig config;
  config.enabled = true;
  config.algorithm_id = input.Byte() % 6;
  config.protected_cmds = {0x21};
  config.probe_offset = static_cast<int16_t>(input.Number16());
  config.probe_len = Signed(input.Byte());
  config.probe_little_endian = (input.Byte() & 1) != 0;
  const bool prefix = (input.Byte() & 1) != 0;
  AuthorizedCmxClient client(sender, config, prefix, nullptr,
                             CreateAuthAlgorithm(config.algorithm_id, FuzzKeys()));
  for (int i = 0; i < 4; ++i) {
    const int32_t error = Signed(input.Byte());
    sender->replies.push_back({error, input.Block(input.Byte())});
  }
  client.Probe();
  Bytes answer;
  int32_t error = 0;
  const bool accepted = client.QueryCommand({1}, answer, 0x21, false, &error) == 0;
  const size_t commands = static_cast<size_t>(
      std::count(sender->sent.begin(), sender->sent.end(), ScriptedSender::Sent{0x21, {1}}));
  Require(commands == (error == kAuthRefused && commands == 0 ? 0U : 1U),
          "a command is sent once, or refused");
  Require(!accepted || commands == 1, "what was not sent is not accepted");
}

}  // namespace

void FuzzDeviceAnswers(FuzzInput input) {
  CheckHandshake(input);
  const Bytes answer = input.Rest();
  ScriptedSender sender;
  CheckMaintenance(sender, answer);
  CheckLayouts(answer);
  CheckPointPacket(answer);
  CheckCalibration(answer);
}
