#include "variables/payload_layout.h"

namespace {

// Variables that one exchange reads share both the command and the bytes that go with it.
std::string ReplyKey(const VarInfo& var) { return var.get_cmd + '\n' + var.read_payload_text; }

}  // namespace

void PayloadLayout::TakeOutOfUse(const VarInfo& var) {
  if (!var.get_cmd.empty()) {
    replies_[ReplyKey(var)].unusable = true;
  }
  if (!var.set_cmd.empty()) {
    writes_[var.set_cmd].unusable = true;
  }
}

bool PayloadLayout::PlaceInReply(VarInfo* var) {
  if (reply_ == nullptr || var->get_cmd != reply_->command ||
      var->read_payload_text != reply_->read_payload) {
    reply_ = &replies_[ReplyKey(*var)];
    reply_->command = var->get_cmd;
    reply_->read_payload = var->read_payload_text;
  }
  return TakeRoom(reply_, var->offset, &var->get_start_pos);
}

bool PayloadLayout::PlaceInPayload(std::optional<int32_t> set_index, VarInfo* var, bool* ascends) {
  if (write_ == nullptr || var->set_cmd != write_->command) {
    write_ = &writes_[var->set_cmd];
    write_->command = var->set_cmd;
  }
  *ascends = !set_index || !write_->last_set_index || *set_index > *write_->last_set_index;
  if (set_index) {
    write_->last_set_index = set_index;
  }
  return TakeRoom(write_, var->offset, &var->set_start_pos);
}

bool PayloadLayout::TakeRoom(Payload* payload, int32_t length, int32_t* position) {
  if (payload->length + length > kMaxLength) {
    payload->unusable = true;
  }
  if (payload->unusable) {
    return false;
  }
  *position = static_cast<int32_t>(payload->length);
  payload->length += length;
  return true;
}
