#pragma once

#include <functional>
#include <map>
#include <memory>

#include "CmxClient/command_sender.h"
#include "device/virtual_device.h"
#include "support/bytes.h"

/// The virtual lidar without a wire: what is sent reaches it at once. After new network settings
/// the link is gone, as with the real one, until it is opened again. For one thread.
class DeviceSender : public kavel::lidar::CommandSender {
 public:
  explicit DeviceSender(const std::string& model)
      : device_(std::make_shared<ConfigParser>(LoadTable("./Config/varID/" + model + ".csv")),
                Profile(model)) {}

  bool IsOpen() override { return open; }
  using CommandSender::QueryCommand;
  int32_t QueryCommand(const Bytes& payload, Bytes& result, uint8_t cmd, bool /*with_header*/,
                       int32_t* error) override {
    int32_t code = kavel::lidar::kNotConnected;
    if (open) {
      sent.push_back(cmd);
      code = before ? before(cmd) : 0;
      code = code == 0 ? Exchange(payload, result, cmd) : code;
    }
    if (error != nullptr) {
      *error = code;
    }
    return code == 0 ? 0 : -1;
  }

  /// What it holds for every variable that is no clock, by name.
  std::map<std::string, Bytes> Held() const {
    std::map<std::string, Bytes> held;
    for (const VariableMemory::Cell& cell : device_.memory().cells()) {
      if (!cell.is_clock) {
        held[cell.var->var_name] = cell.value;
      }
    }
    return held;
  }
  Bytes Held(const std::string& name) const { return Held()[name]; }
  bool Preset(const std::string& name, const std::string& text) {
    std::string error;
    return device_.Preset(name, text, &error);
  }

  bool open = true;
  std::vector<uint8_t> sent;
  /// Asked before a command reaches the lidar; anything but 0 is what comes of it instead.
  std::function<int32_t(uint8_t cmd)> before;

 private:
  static DeviceProfile Profile(const std::string& model) {
    DeviceProfile profile;
    profile.model = model;
    return profile;
  }

  int32_t Exchange(const Bytes& payload, Bytes& result, uint8_t cmd) {
    DeviceRequest request;
    request.code = cmd;
    request.payload = payload;
    FaultBox none;
    std::string unused;
    const DeviceReply reply = device_.Answer(request, &session_, &none, &unused);
    if (reply.aftermath == Aftermath::kHangUpUnanswered) {
      open = false;
      return kavel::lidar::kNoReply;
    }
    if (reply.return_code == 0 && !reply.payload.empty()) {
      result = reply.payload;
    }
    return reply.return_code;
  }

  VirtualDevice device_;
  AuthSession session_;
};
