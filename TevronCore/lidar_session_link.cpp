// What a session tells of its connection, and of the lidar at the other end.

#include <algorithm>
#include <utility>

#include "lidar_session.h"

LinkSnapshot LidarSession::LinkNow() const {
  const auto known = [](const std::string& text) { return text == kUnread ? "" : text; };
  LinkSnapshot now;
  now.connected = state_.connected;
  now.connecting = connecting_;
  now.awaiting = connecting_ && return_ended_ != nullptr;
  now.give_up_at = give_up_at_;
  now.place = PlaceText(settings_, model_->connect_type);
  now.failure = attempt_ != nullptr ? attempt_->Failure() : failure_;
  now.loss = loss_;
  now.next_place = next_place_;
  now.next_places = next_places_;
  if (state_.connected && connection_ != nullptr && model_->connect_type != kNetworkLink) {
    now.silent_since = connection_->SilentSince();
  }
  if (state_.connected) {
    now.part_number = known(PartNumber());
    now.serial_number = known(SerialNumber());
    now.version = RunningVersion();
    now.read_at = model_->connect_type == kNetworkLink ? NewestInView() : facts_read_at_;
  }
  return now;
}

std::optional<std::chrono::system_clock::time_point> LidarSession::NewestInView() const {
  std::optional<std::chrono::system_clock::time_point> newest;
  if (page_in_view_ < 0 || page_in_view_ >= model_->pages.page_count()) {
    return newest;
  }
  const auto vars = model_->pages.VariablesOf(page_in_view_);
  for (const ConfigParser::Value& value : model_->table->ValuesOf(vars)) {
    newest = std::max(newest, value.read_at);
  }
  return newest;
}

std::string LidarSession::RunningVersion() const {
  if (model_->connect_type != kNetworkLink) {
    return VersionText(facts_.versions, model_->family);
  }
  const std::string version = Identity("SWVER_YMD", kUnread);
  return version == kUnread ? "" : version;
}

std::string LidarSession::Identity(const char* name, const std::string& asked) const {
  if (model_->connect_type != kNetworkLink) {
    return asked;
  }
  const VarInfo* var = model_->table->FindByName(name);
  if (var == nullptr || !state_.connected) {
    return kUnread;
  }
  ConfigParser::Value value = model_->table->ValueOf(*var);
  return value.has_bytes ? std::move(value.text) : kUnread;
}
