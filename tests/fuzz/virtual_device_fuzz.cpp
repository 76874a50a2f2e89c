#include <memory>

#include "Wire/big_endian.h"
#include "Wire/serial_frame.h"
#include "Wire/serial_stream.h"
#include "auth/auth_algorithm.h"
#include "device/virtual_device.h"
#include "fuzz/fuzz_keys.h"
#include "fuzz/fuzz_targets.h"
#include "fuzz/serial_bytes.h"
#include "wire/cmx_codec.h"
#include "wire/serial_codec.h"

using namespace kavel::lidar;

namespace {

constexpr size_t kMostBytes = size_t{256} * 1024;
constexpr size_t kMostAnswered = LogStore::kUsualSize + 64;

constexpr char kTable[] =
    "GroupID,Index,Get,Set,SetIndex,VarName,Permission,VarType,DefaultValue,Options,Unit,"
    "Coefficient,OptionDescription,FunctionModule,VarLen,TimerUpdate,"
    "SetCoefficient,GetCmdPayload,SetCmdPayload\n"
    "1,1,0x30,0x31,,Speed,1,uint16,600,300..1200,,,,,2\n"
    "1,2,0x30,0x31,,Level,1,int8,-3,,,,,,1\n"
    "2,1,0x20,0x21,,Address,1,IP,192.168.1.201,,,,,,4\n"
    "3,1,0x02,,,Up-time,0,DT,0 h 0 min 5 s,,,,,,4\n"
    "4,1,0x40,0x41,,Name,1,string,lidar,,,,,,8\n";

/// How the input wants the device, and what a client does to it.
struct Setup {
  explicit Setup(uint8_t how)
      : framing(how & 3),
        guarded((how & 4) != 0),
        family(framing < 2      ? SerialFamily::kNone
               : (how & 8) != 0 ? SerialFamily::kLumo
                                : SerialFamily::kKiva) {}

  uint8_t framing;  ///< 0 and 1: the two versions over TCP; others: a serial line
  bool guarded;
  SerialFamily family;
};

// Any bytes, or a request as our own tool would frame it, with up to 64 KiB behind it.
Bytes TcpBytes(FuzzInput* input, const CmxHeaderLayout& layout) {
  Bytes bytes;
  while (!input->empty() && bytes.size() < kMostBytes) {
    const uint8_t how = input->Byte();
    Bytes next;
    if ((how & 1) != 0) {
      next = input->Block(input->Byte());
    } else {
      const uint8_t code = input->Byte();
      Bytes payload = input->Block(input->Byte());
      payload.resize(payload.size() + ((how & 2) != 0 ? input->Number16() : 0));
      next = BuildCmxFrame(layout, code, 0, payload);
    }
    bytes.insert(bytes.end(), next.begin(), next.end());
  }
  return bytes;
}

/// One client of a device, on a line that brings any bytes.
class Dealings {
 public:
  explicit Dealings(Setup setup)
      : setup_(setup), layout_(setup.framing == 1 ? kCmxHeader2 : kCmxHeader1), device_(Device()) {
    PlugIn();
  }

  Bytes Sent(FuzzInput* input) const {
    return setup_.framing < 2 ? TcpBytes(input, layout_) : SerialBytes(input, kMostBytes);
  }

  void Take(const Bytes& bytes, size_t portion) {
    for (size_t at = 0; at < bytes.size(); at += portion) {
      const size_t size = std::min(portion, bytes.size() - at);
      for (const DeviceRequest& request : codec_->Feed(bytes.data() + at, size, {})) {
        Carry(request);
      }
    }
  }

  /// The handshake, as one does it who knows the keys: the next protected command may pass.
  void Authorise() {
    DeviceRequest request;
    request.serial_line = setup_.framing >= 2;
    request.code = static_cast<uint8_t>(config_.challenge_cmd);
    Carry(request);
    request.code = static_cast<uint8_t>(config_.response_cmd);
    request.payload =
        CreateAuthAlgorithm(config_.algorithm_id, FuzzKeys())->Compute(session_.challenge);
    Carry(request);
    Require(!setup_.guarded || session_.authorised, "who knows the keys may pass");
  }

 private:
  VirtualDevice Device() {
    static const std::shared_ptr<const ConfigParser> table =
        std::make_shared<ConfigParser>(LoadTable(FuzzFolder().Write("device/Test.csv", kTable)));
    config_.enabled = setup_.guarded;
    config_.algorithm_id = kAes256Cmac;
    config_.protected_cmds = {0x21, 0x31, 0x41};
    DeviceProfile profile;
    profile.model = "Test";
    profile.family = setup_.family;
    profile.auth = config_;
    profile.auth_keys = FuzzKeys();
    return {table, std::move(profile), [] { return std::chrono::steady_clock::time_point(); }};
  }

  void PlugIn() {
    session_ = {};
    if (setup_.framing < 2) {
      codec_ = std::make_unique<CmxCodec>(setup_.framing + 1);
    } else {
      codec_ = std::make_unique<SerialCodec>();
    }
  }

  Bytes Held() const {
    Bytes held;
    for (const VariableMemory::Cell& cell : device_.memory().cells()) {
      held.insert(held.end(), cell.value.begin(), cell.value.end());
    }
    return held;
  }

  void Carry(const DeviceRequest& request) {
    const bool barred =
        setup_.guarded && !session_.authorised && config_.protected_cmds.count(request.code) > 0;
    const Bytes before = Held();
    device_.TakeChanged();
    std::string what;
    const DeviceReply reply = device_.Answer(request, &session_, &faults_, &what);
    Require(!what.empty(), "a request has a name in the log");
    if (barred) {
      Require(reply.return_code != kAccepted && reply.aftermath == Aftermath::kNone &&
                  !device_.TakeChanged() && Held() == before,
              "a client without authorisation changes nothing");
    }
    Require(reply.return_code == kAccepted || Held() == before, "what is refused changes nothing");
    if (reply.aftermath != Aftermath::kNoAnswer && reply.aftermath != Aftermath::kPowerCycle) {
      CheckReply(reply);
    }
    if (reply.aftermath != Aftermath::kNone && reply.aftermath != Aftermath::kNoAnswer) {
      session_ = {};  // the link drops
    }
  }

  void CheckReply(const DeviceReply& reply) const {
    Require(reply.payload.size() <= kMostAnswered, "an answer is bounded");
    const Bytes frame = codec_->Encode(reply);
    if (setup_.framing < 2) {
      Require(
          frame.size() == layout_.size + reply.payload.size() &&
              FindCmxHeader(layout_, frame.data(), frame.data() + frame.size()) == frame.data() &&
              frame[layout_.command_at] == reply.code &&
              frame[layout_.return_code_at] == reply.return_code &&
              ReadBigEndian32(&frame[layout_.payload_length_at]) == reply.payload.size(),
          "the tool reads the answer");
      return;
    }
    SerialStream tool(SerialListener::kTool);
    tool.Append(frame.data(), frame.size());
    const auto read = tool.Next();
    Require(read && read->sound && read->bytes == frame && tool.skipped_bytes() == 0,
            "the tool finds the answer on the line");
  }

  Setup setup_;
  const CmxHeaderLayout& layout_;
  AuthConfig config_;
  VirtualDevice device_;
  std::unique_ptr<WireCodec> codec_;
  AuthSession session_;
  FaultBox faults_;
};

}  // namespace

void FuzzVirtualDevice(FuzzInput input) {
  const Setup setup(input.Byte());
  const uint8_t portion = input.Byte();
  const bool authorised = (input.Byte() & 1) != 0;
  Dealings dealings(setup);
  if (authorised && setup.guarded) {
    dealings.Authorise();
  }
  dealings.Take(dealings.Sent(&input), portion + size_t{1});
}
