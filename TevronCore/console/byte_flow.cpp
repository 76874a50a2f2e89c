#include "console/byte_flow.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

void Add(const std::string& text, const std::vector<uint8_t>& fixed_payload,
         std::vector<WireCommand>* commands) {
  if (text.empty()) {
    return;
  }
  try {
    commands->push_back(WireCommandOf(text, fixed_payload));
  } catch (const std::logic_error&) {
    // A text that is no command can never be sent.
  }
}

std::string Hidden(const char* tag, const std::vector<uint8_t>& bytes) {
  return tag + std::to_string(bytes.size()) + " bytes, not shown: they may hold a key";
}

}  // namespace

void ByteFlow::ShowCommand(const std::string& line) {
  ++command_count_;
  ShowAnswer(line);
}

void ByteFlow::ShowAnswer(const std::string& line) { report_.LogLine(line, LogType::kByteFlow); }

std::vector<WireCommand> SecretCommands(const ConfigParser& table, const AuthConfig& auth) {
  const std::vector<uint8_t> none;
  std::vector<WireCommand> secrets;
  for (const VarInfo* var : table.InTableOrder()) {
    if (var->var_name == kSharedSecretKey) {
      Add(var->get_cmd, var->read == nullptr ? none : var->read->fixed_payload, &secrets);
      Add(var->set_cmd, none, &secrets);
    }
  }
  if (auth.enabled) {
    secrets.push_back({static_cast<uint8_t>(auth.response_cmd), {}});
  }
  return secrets;
}

ByteFlowSink::ByteFlowSink(std::shared_ptr<ByteFlow> flow, std::vector<WireCommand> secrets)
    : flow_(std::move(flow)), secrets_(std::move(secrets)) {}

void ByteFlowSink::Sent(const Request& request, const std::vector<uint8_t>& frame) {
  const bool is_secret = IsSecret(request);
  if (is_secret) {
    secret_owed_ = true;
  }
  if (flow_->IsOn()) {
    flow_->ShowCommand(is_secret ? Hidden("SEND: ", frame) : kavel::lidar::SentLine(frame));
  }
}

void ByteFlowSink::Received(const std::vector<uint8_t>& bytes) {
  const bool is_hidden = secret_owed_.exchange(false);
  if (flow_->IsOn()) {
    flow_->ShowAnswer(is_hidden ? Hidden("RECV: ", bytes) : kavel::lidar::ReceivedLine(bytes));
  }
}

void ByteFlowSink::Failed(int32_t error) {
  if (flow_->IsOn()) {
    flow_->ShowAnswer(kavel::lidar::FailedLine(error));
  }
}

bool ByteFlowSink::IsSecret(const Request& request) const {
  return std::any_of(secrets_.begin(), secrets_.end(), [&request](const WireCommand& secret) {
    return secret.code == request.cmd && secret.payload.size() <= request.payload.size() &&
           std::equal(secret.payload.begin(), secret.payload.end(), request.payload.begin());
  });
}
