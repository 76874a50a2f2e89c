#include "CmxClient/cmx_client.h"

#include <new>
#include <utility>

#include "Log/logger.h"
#include "Wire/return_code.h"

namespace kavel::lidar {
namespace {

// "" for what the lidar did not say, and for a device's own code.
std::string MeaningInBrackets(int32_t code) {
  const std::string meaning = ReturnCodeMeaning(code);
  return meaning.empty() ? "" : " (" + meaning + ")";
}

// What memory is too small to show is left out; the exchange itself went well.
void TellOutcome(const CmxExchange::Outcome& outcome, const std::vector<uint8_t>& result,
                 ByteSink& sink) {
  try {
    outcome.accepted ? sink.Received(result) : sink.Failed(outcome.error);
  } catch (const std::bad_alloc&) {
    KAVEL_LOG(kWarning, "no memory to show the answer");
  }
}

}  // namespace

int32_t CmxClient::QueryCommand(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                                uint8_t cmd, bool with_header, int32_t* error) {
  const std::shared_ptr<ByteSink> sink = Sink();
  return Query(payload, result, cmd, {with_header, sink.get(), {}}, error);
}

int32_t CmxClient::QueryQuietly(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                                uint8_t cmd, int32_t* error) {
  return Query(payload, result, cmd, {}, error);
}

int32_t CmxClient::QueryWithin(uint32_t timeout_ms, const std::vector<uint8_t>& payload,
                               std::vector<uint8_t>& result, uint8_t cmd, int32_t* error) {
  const CmxExchange::Timeouts timeouts = {timeout_ms, timeout_ms};
  return Query(payload, result, cmd, {false, nullptr, timeouts}, error);
}

int32_t CmxClient::QueryLong(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                             uint8_t cmd, ReplyProgress& progress, int32_t* error) {
  return Query(payload, result, cmd, {false, nullptr, {}, &progress}, error);
}

int32_t CmxClient::Query(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                         uint8_t cmd, const Terms& terms, int32_t* error) {
  int32_t ignored = 0;
  int32_t& reason = error != nullptr ? *error : ignored;
  if (!IsOpen()) {
    KAVEL_LOG(kError, "Client is not open, cannot send command.");
    reason = kNotConnected;
    return -1;
  }
  const std::lock_guard<TicketMutex> lock(exchange_mutex_);
  const auto start = Clock::now();
  const auto asked_at = std::chrono::system_clock::now();
  bool accepted = false;
  try {
    const CmxExchange::Outcome outcome = RunExchange(payload, result, cmd, terms);
    accepted = outcome.accepted;
    reason = outcome.error;
  } catch (const std::bad_alloc&) {
    KAVEL_LOG(kError, "no memory for the answer");
    reason = kReplyBrokeOff;
  }
  if (!accepted) {
    last_error_ = reason;
  }
  if (accepted || reason != kSendIncomplete) {
    NoteAnswer(accepted || reason != kNoReply, asked_at);
  }
  const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
  KAVEL_LOG(kTrace, "exec time: %fms", elapsed.count());
  return accepted ? 0 : -1;
}

CmxExchange::Outcome CmxClient::RunExchange(const std::vector<uint8_t>& payload,
                                            std::vector<uint8_t>& result, uint8_t cmd,
                                            const Terms& terms) {
  // Left in force until an exchange wants others: thousands of pieces follow one another.
  const CmxExchange::Timeouts wanted = terms.timeouts.value_or(usual_);
  const CmxExchange::Timeouts now = exchange_.timeouts();
  if (wanted.recv_ms != now.recv_ms || wanted.send_ms != now.send_ms) {
    exchange_.UseTimeouts(wanted);
  }
  CmxExchange::Outcome outcome = exchange_.Run(cmd, payload, terms.sink, terms.progress);
  if (terms.with_header && !outcome.header.empty()) {
    outcome.header.insert(outcome.header.end(), outcome.payload.begin(), outcome.payload.end());
    result.swap(outcome.header);
  } else if (!outcome.payload.empty()) {
    result.swap(outcome.payload);
  }
  if (terms.sink != nullptr && !exchange_.told_by_transport()) {
    TellOutcome(outcome, result, *terms.sink);
  }
  return outcome;
}

void CmxClient::NoteAnswer(bool found, std::chrono::system_clock::time_point asked_at) {
  const std::lock_guard<std::mutex> lock(state_mutex_);
  if (found) {
    silent_since_.reset();
  } else if (!silent_since_) {
    silent_since_ = asked_at;
  }
}

std::optional<std::chrono::system_clock::time_point> CmxClient::SilentSince() {
  const std::lock_guard<std::mutex> lock(state_mutex_);
  return silent_since_;
}

std::shared_ptr<ByteSink> CmxClient::Sink() {
  const std::lock_guard<std::mutex> lock(state_mutex_);
  return byte_sink_;
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
      return (code > 0 ? "lidar return code " : "error ") + std::to_string(code) +
             MeaningInBrackets(code);
  }
}

}  // namespace kavel::lidar
