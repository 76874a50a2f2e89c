#include "CmxClient/cmx_client.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <utility>

#include "CmxClient/hex_text.h"
#include "Log/logger.h"
#include "Wire/big_endian.h"

namespace kavel::lidar {
namespace {

constexpr uint32_t kDrainTimeoutMs = 50;
constexpr size_t kDrainBlockSize = 1500;
constexpr uint32_t kLargePayload = 10240;
/// How far the buffer runs ahead of what has arrived.
constexpr size_t kPayloadStep = 65536;
constexpr uint32_t kTransferTimeoutMs = 60000;
constexpr uint8_t kLongCommand = 0xFF;

const CmxHeaderLayout& LayoutOf(uint8_t protocol_version) {
  return protocol_version == 1 ? kCmxHeader1 : kCmxHeader2;
}

}  // namespace

/// What one exchange has brought so far.
struct CmxClient::Reply {
  std::vector<uint8_t> header;
  std::vector<uint8_t> payload;
  bool has_stray_bytes = false;  ///< something stood before the header
};

int32_t CmxClient::QueryCommand(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                                uint8_t cmd, bool with_header, int32_t* error) {
  int32_t ignored = 0;
  int32_t& reason = error != nullptr ? *error : ignored;
  if (!IsOpen()) {
    KAVEL_LOG(kError, "Client is not open, cannot send command.");
    reason = kNotConnected;
    return -1;
  }
  const std::lock_guard<std::mutex> exchange(exchange_mutex_);
  const auto start = Clock::now();
  const Outcome outcome = RunExchange(payload, result, cmd, with_header);
  if (!outcome.accepted) {
    last_error_ = outcome.error;
  }
  reason = outcome.error;
  WriteOutcome(outcome, result);
  const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
  KAVEL_LOG(kTrace, "exec time: %fms", elapsed.count());
  return outcome.accepted ? 0 : -1;
}

CmxClient::Outcome CmxClient::RunExchange(const std::vector<uint8_t>& payload,
                                          std::vector<uint8_t>& result, uint8_t cmd,
                                          bool with_header) {
  // Until the exchange has ended well, the next one must expect remains of it.
  const bool expect_remains = std::exchange(trouble_, true);
  std::vector<uint8_t> frame;
  if (!BuildFrame(payload, frame, cmd)) {
    return {false, kSendIncomplete};
  }
  DropStaleInput(expect_remains);
  if (!SendFrame(frame)) {
    return {false, kSendIncomplete};
  }
  Reply reply;
  if (!ReceiveHeader(reply)) {
    return {false, kNoReply};
  }
  const Outcome checked = CheckHeader(reply, cmd);
  const uint32_t length =
      checked.accepted
          ? ReadBigEndian32(reply.header.data() + LayoutOf(protocol_version_).payload_length_at)
          : 0;
  if (length > 0 && !ReceivePayload(reply, length)) {
    return {false, kReplyBrokeOff};
  }
  if (with_header) {
    result.swap(reply.header);
    result.insert(result.end(), reply.payload.begin(), reply.payload.end());
  } else if (length > 0) {
    result.swap(reply.payload);
  }
  trouble_ = !checked.accepted || reply.has_stray_bytes;
  return checked;
}

bool CmxClient::BuildFrame(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame,
                           uint8_t cmd) {
  constexpr size_t kMaxFrameSize = std::numeric_limits<uint16_t>::max();
  if (payload.size() + parser_->GetHeaderSize() > kMaxFrameSize) {
    KAVEL_LOG(kError, "a payload of %llu bytes does not fit into one frame",
              static_cast<unsigned long long>(payload.size()));
    return false;
  }
  if (!parser_->CmxEncode(payload, frame, cmd)) {
    KAVEL_LOG(kError, "no frames are known for protocol version %u", unsigned{protocol_version_});
    return false;
  }
  return true;
}

bool CmxClient::SendFrame(std::vector<uint8_t>& frame) {
  const auto size = static_cast<uint16_t>(frame.size());
  const int32_t sent = transport_->Send(frame.data(), size, 0);
  if (const auto sink = Sink()) {
    sink->WriteLine("SEND: " + HexText(frame));
  }
  if (sent != size) {
    KAVEL_LOG(kWarning, "send failure, %d.", sent);
    return false;
  }
  return true;
}

void CmxClient::DropStaleInput(bool expect_remains) {
  if (stale_input_ == StaleInput::kAfterTrouble && !expect_remains) {
    std::array<uint8_t, kDrainBlockSize> block;
    if (transport_->Receive(block.data(), kDrainBlockSize, ClientBase::kPoll) < 1) {
      return;
    }
  }
  DrainUntilSilent();
}

void CmxClient::DrainUntilSilent() {
  std::array<uint8_t, kDrainBlockSize> block;
  // A lidar that never falls silent must not hold the exchange for ever.
  const auto deadline = Clock::now() + std::chrono::milliseconds(in_force_.recv_ms);
  transport_->SetTimeout(kDrainTimeoutMs, kDrainTimeoutMs);
  while (transport_->Receive(block.data(), kDrainBlockSize, 0) > 0 && Clock::now() < deadline) {
  }
  transport_->SetTimeout(in_force_.recv_ms, in_force_.send_ms);
}

bool CmxClient::ReceiveHeader(Reply& reply) {
  const size_t size = parser_->GetHeaderSize();
  const std::array<uint8_t, 2> identifier = {parser_->GetHeaderIdentifier1(),
                                             parser_->GetHeaderIdentifier2()};
  // Other bytes may come and come: the search ends as if there had been silence.
  const auto deadline = Clock::now() + std::chrono::milliseconds(in_force_.recv_ms);
  std::array<uint8_t, kMaxCmxHeaderSize> block;
  while (reply.header.size() < size) {
    const auto missing = static_cast<uint32_t>(size - reply.header.size());
    const int32_t count = transport_->Receive(block.data(), missing, 0);
    if (count < 1) {
      return false;
    }
    auto first = block.begin();
    const auto end = first + count;
    if (reply.header.empty()) {
      first = std::search(first, end, identifier.begin(), identifier.end());
      reply.has_stray_bytes |= first != block.begin();
      if (first == end && Clock::now() >= deadline) {
        return false;
      }
    }
    reply.header.insert(reply.header.end(), first, end);
  }
  return true;
}

CmxClient::Outcome CmxClient::CheckHeader(const Reply& reply, uint8_t cmd) {
  const CmxHeaderLayout& layout = LayoutOf(protocol_version_);
  const unsigned return_code = reply.header[layout.return_code_at];
  const unsigned answered = reply.header[layout.command_at];
  const bool is_ours = reply.header[0] == layout.identifier_1 &&
                       reply.header[1] == layout.identifier_2 && answered == cmd;
  if (is_ours && return_code == 0) {
    return {true, 0};
  }
  // The two texts differ by a blank, and are meant to: they tell the versions apart in a log.
  if (protocol_version_ == 1) {
    KAVEL_LOG(kWarning, "CmxClient::QueryCommand, RspCode invalid:%u, return_cmd:%u, cmd:%u",
              return_code, answered, unsigned{cmd});
  } else {
    KAVEL_LOG(kWarning, "CmxClient::QueryCommand,RspCode invalid:%u, return_cmd:%u, cmd:%u",
              return_code, answered, unsigned{cmd});
  }
  return {false, static_cast<int32_t>(return_code)};
}

bool CmxClient::ReceivePayload(Reply& reply, uint32_t length) {
  if (length > kLargePayload) {
    KAVEL_LOG(kWarning, "CmxClient::QueryCommand, warning, nPayLoadLen too large:%d",
              static_cast<int>(length));
  }
  size_t received = 0;
  try {
    while (received < length) {
      const size_t step = std::min<size_t>(length - received, kPayloadStep);
      reply.payload.resize(received + step);
      const int32_t count =
          transport_->Receive(reply.payload.data() + received, static_cast<uint32_t>(step), 0);
      if (count < 1) {
        return false;
      }
      received += static_cast<size_t>(count);
    }
  } catch (const std::bad_alloc&) {
    KAVEL_LOG(kError, "no memory for the rest of a payload of %u bytes", length);
    return false;
  }
  return true;
}

void CmxClient::WriteOutcome(const Outcome& outcome, const std::vector<uint8_t>& result) {
  if (const auto sink = Sink()) {
    sink->WriteLine("RECV: " + (outcome.accepted ? HexText(result)
                                                 : "ret_code is " + std::to_string(outcome.error)));
  }
}

std::shared_ptr<LogSink> CmxClient::Sink() {
  const std::lock_guard<std::mutex> lock(state_mutex_);
  return log_sink_;
}

int32_t CmxClient::GetLastErrorCode() { return last_error_; }

std::string CmxClient::ErrorText(int32_t code) {
  switch (code) {
    case 0:
      return "the lidar answered another command";
    case kNotConnected:
      return "the lidar is not connected";
    case kNoReply:
      return "no answer from the lidar";
    case kReplyBrokeOff:
      return "the lidar's answer broke off";
    case kSendIncomplete:
      return "the command could not be sent";
    case kAuthRefused:
      return "authentication refused the command, the log says why";
    case kBadReply:
      return "the reply has an unexpected length";
    case kBadArgument:
      return "a value is outside its range, nothing was sent";
    default:
      return (code > 0 ? "lidar return code " : "error ") + std::to_string(code);
  }
}

int32_t CmxClient::TransferFile(const std::vector<uint8_t>& data, uint32_t code, bool long_command,
                                std::atomic<int>* progress) {
  const uint8_t cmd = long_command ? kLongCommand : static_cast<uint8_t>(code);
  std::vector<std::vector<uint8_t>> frames;
  if (!parser_->CmxFilestreamSend(data, frames, cmd) || (frames.empty() && !data.empty())) {
    KAVEL_LOG(kError, "protocol version %u has no file pieces", unsigned{protocol_version_});
    return -1;
  }
  if (!IsOpen()) {
    KAVEL_LOG(kError, "Client is not open, cannot send command.");
    return -1;
  }
  const Timeouts usual = UseTimeouts({kTransferTimeoutMs, kTransferTimeoutMs});
  const auto header_size = static_cast<std::ptrdiff_t>(parser_->GetHeaderSize());
  int32_t outcome = 0;
  int number = 0;
  std::vector<uint8_t> answer;
  for (const auto& frame : frames) {
    if (progress != nullptr) {
      *progress = ++number;
    }
    // The exchange writes the very header that is cut off here.
    const std::vector<uint8_t> piece(frame.begin() + header_size, frame.end());
    outcome = QueryCommand(piece, answer, cmd, false);
    if (outcome != 0) {
      break;
    }
  }
  UseTimeouts(usual);
  return outcome;
}

CmxClient::Timeouts CmxClient::UseTimeouts(Timeouts timeouts) {
  const std::lock_guard<std::mutex> exchange(exchange_mutex_);
  transport_->SetTimeout(timeouts.recv_ms, timeouts.send_ms);
  return std::exchange(in_force_, timeouts);
}

}  // namespace kavel::lidar
