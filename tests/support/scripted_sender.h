#pragma once

#include <deque>

#include "CmxClient/command_sender.h"
#include "Wire/big_endian.h"
#include "support/bytes.h"

/// A lidar that answers each command with the next scripted reply, and with silence when there is
/// none left. Remembers what was sent.
class ScriptedSender : public kavel::lidar::CommandSender {
 public:
  struct Reply {
    int32_t error;  ///< 0: accepted; positive: the lidar's return code; negative: no usable reply
    Bytes payload;
  };
  struct Sent {
    uint8_t cmd;
    Bytes payload;
    bool operator==(const Sent& other) const {
      return cmd == other.cmd && payload == other.payload;
    }
  };

  bool IsOpen() override { return true; }
  using CommandSender::QueryCommand;
  int32_t QueryCommand(const Bytes& payload, Bytes& result, uint8_t cmd, bool with_header,
                       int32_t* error) override {
    sent.push_back({cmd, payload});
    Reply reply = {kavel::lidar::kNoReply, {}};
    if (!replies.empty()) {
      reply = replies.front();
      replies.pop_front();
    }
    if (error != nullptr) {
      *error = reply.error;
    }
    if (with_header && reply.error >= 0) {
      result = {0x47, 0x74, cmd, static_cast<uint8_t>(reply.error)};
      kavel::lidar::AppendBigEndian32(result, static_cast<uint32_t>(reply.payload.size()));
      result.insert(result.end(), reply.payload.begin(), reply.payload.end());
    } else if (reply.error == 0 && !reply.payload.empty()) {
      result = reply.payload;
    }
    return reply.error == 0 ? 0 : -1;
  }

  int32_t QueryQuietly(const Bytes& payload, Bytes& result, uint8_t cmd, int32_t* error) override {
    ++quiet;
    return QueryCommand(payload, result, cmd, false, error);
  }

  int quiet = 0;  ///< how many of them are not shown to the user
  std::deque<Reply> replies;
  std::vector<Sent> sent;
};
