// What a session tells of its connection, and of the lidar at the other end.

#include <algorithm>
#include <utility>

#include "lidar_session.h"

namespace {

std::optional<std::chrono::system_clock::time_point> NewestOf(
    const std::vector<ConfigParser::Value>& values) {
  std::optional<std::chrono::system_clock::time_point> newest;
  for (const ConfigParser::Value& value : values) {
    newest = std::max(newest, value.read_at);
  }
  return newest;
}

}  // namespace

LinkSnapshot LidarSession::LinkNow() const {
  const auto known = [](const std::string& text) { return text == kUnreadFact ? "" : text; };
  LinkSnapshot now;
  now.connected = state_.connected;
  now.connecting = connecting_;
  now.awaiting = connecting_ && return_ended_ != nullptr;
  now.give_up_at = give_up_at_;
  now.place = PlaceText(settings_, model_->connect_type);
  now.failure = attempt_ != nullptr ? attempt_->Failure() : failure_;
  now.untrusted = untrusted_;
  now.loss = loss_;
  now.next_address = next_address_;
  now.next_addresses = next_addresses_;
  if (state_.connected && connection_ != nullptr && model_->connect_type != kNetworkLink) {
    now.silent_since = connection_->SilentSince();
  }
  if (state_.connected && connection_ != nullptr) {
    now.certificate = connection_->certificate();
  }
  if (state_.connected) {
    now.part_number = known(PartNumber());
    now.serial_number = known(SerialNumber());
    now.version = RunningVersion();
    now.read_at = facts_read_at_;
    if (model_->connect_type == kNetworkLink) {
      const std::vector<const VarInfo*> vars = ReadInView();
      now.reads_view = !vars.empty();
      now.read_at = NewestOf(model_->table->ValuesOf(vars));
    }
  }
  return now;
}

std::vector<const VarInfo*> LidarSession::ReadInView() const {
  if (page_in_view_ < 0 || page_in_view_ >= model_->pages.page_count()) {
    return {};
  }
  std::vector<const VarInfo*> vars = model_->pages.VariablesOf(page_in_view_);
  vars.erase(std::remove_if(vars.begin(), vars.end(),
                            [](const VarInfo* var) { return var->read == nullptr; }),
             vars.end());
  return vars;
}

std::string LidarSession::RunningVersion() const {
  if (model_->connect_type != kNetworkLink) {
    return VersionText(facts_.versions, model_->family);
  }
  const std::string version = Identity("SWVER_YMD", kUnreadFact);
  return version == kUnreadFact ? "" : version;
}

std::string LidarSession::Identity(const char* name, const std::string& asked) const {
  if (model_->connect_type != kNetworkLink) {
    return asked;
  }
  const VarInfo* var = model_->table->FindByName(name);
  if (var == nullptr || !state_.connected) {
    return kUnreadFact;
  }
  ConfigParser::Value value = model_->table->ValueOf(*var);
  return value.has_bytes ? std::move(value.text) : kUnreadFact;
}
