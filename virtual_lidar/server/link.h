#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "device/auth_guard.h"
#include "faults/reply_plan.h"
#include "server/byte_stream.h"
#include "server/event_loop.h"
#include "wire/wire_codec.h"

class Link;

/// Who answers what comes in over a link.
class LinkHost {
 public:
  virtual ~LinkHost() = default;
  /// Bytes were read and not yet looked at. News of the line that is older than they are has to be
  /// dealt with now; the host may call Reset.
  virtual void BeforeRequests(Link& link) = 0;
  virtual ReplyPlan OnRequest(Link& link, const DeviceRequest& request) = 0;
  /// The far end has gone, or a hang-up was planned. The link does nothing more; the host destroys
  /// it or calls Reset, but not before this call returned.
  virtual void OnHangUp(Link& link) = 0;
  /// An answer that ends in a restart has left, or the link failed before it could.
  virtual void OnRestartDue() = 0;
};

/// One client's connection: requests in and answers out over a stream of bytes.
/// Answers leave in the order of the requests. A client that sends without reading its answers is
/// not read from once 256 KiB are waiting for it.
class Link {
 public:
  Link(EventLoop* loop, LinkHost* host, std::unique_ptr<ByteStream> stream,
       std::unique_ptr<WireCodec> codec, std::string name);
  ~Link();
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  const ByteStream& stream() const { return *stream_; }
  const WireCodec& codec() const { return *codec_; }
  /// For the log: where the client is.
  const std::string& name() const { return name_; }
  AuthSession* auth() { return &auth_; }

  /// Sends bytes that answer nothing, ahead of the answers that have not begun. They are dropped
  /// while an answer is on its way, when the far end takes no more, and when it has gone.
  void SendBetween(std::vector<uint8_t> bytes);

  /// Forgets half requests, waiting answers and the authentication, as for a new client.
  void Reset(std::unique_ptr<WireCodec> codec);

 private:
  struct Answer {
    ReplyPlan plan;
    EventLoop::Clock::time_point arrived;  ///< when its request had come
  };

  void UpdateWatches();
  void OnEvents(int fd, short events);
  void ReadRequests();
  void Enqueue(Answer answer);
  void SendWaiting();
  /// Writes what has not left yet. False when the far end takes no more for now, or has gone.
  bool Write(const std::vector<uint8_t>& bytes, size_t* sent_of_them);
  bool FinishBetween();
  void FinishPlan();
  /// True when the step may leave now; otherwise its time has been set.
  bool WaitFor(const SendStep& step, EventLoop::Clock::time_point arrived);
  void HangUp();

  EventLoop* loop_;
  LinkHost* host_;
  std::unique_ptr<ByteStream> stream_;
  std::unique_ptr<WireCodec> codec_;
  std::string name_;
  AuthSession auth_;
  uint32_t client_;  ///< number of the client that is there now

  std::deque<Answer> answers_;
  size_t next_step_ = 0;          ///< of answers_.front()
  size_t sent_of_step_ = 0;       ///< bytes of that step that have left
  bool waited_ = false;           ///< that step's wait is over
  bool out_blocked_ = false;      ///< the far end takes no more for now
  std::vector<uint8_t> between_;  ///< not all of it has left
  size_t sent_of_between_ = 0;
  size_t waiting_bytes_ = 0;
  EventLoop::TimerId timer_ = 0;
  bool dead_ = false;
};
