#include "server/link.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

namespace {

constexpr size_t kMaxWaitingBytes = size_t{256} * 1024;

// No two clients of one program's life have the same, however they came.
uint32_t NextClient() {
  static std::atomic<uint32_t> last{0};
  return ++last;
}

// An answer that never leaves has to wait its turn as well.
size_t BytesOf(const ReplyPlan& plan) {
  size_t bytes = sizeof plan;
  for (const SendStep& step : plan.steps) {
    bytes += step.bytes.size();
  }
  return bytes;
}

}  // namespace

Link::Link(EventLoop* loop, LinkHost* host, std::unique_ptr<ByteStream> stream,
           std::unique_ptr<WireCodec> codec, std::string name)
    : loop_(loop),
      host_(host),
      stream_(std::move(stream)),
      codec_(std::move(codec)),
      name_(std::move(name)),
      client_(NextClient()) {
  UpdateWatches();
}

Link::~Link() {
  loop_->Cancel(timer_);
  loop_->Unwatch(stream_->in_fd());
  loop_->Unwatch(stream_->out_fd());
}

void Link::Reset(std::unique_ptr<WireCodec> codec) {
  loop_->Cancel(timer_);
  timer_ = 0;
  codec_ = std::move(codec);
  auth_ = AuthSession();
  client_ = NextClient();
  answers_.clear();
  between_.clear();
  next_step_ = sent_of_step_ = sent_of_between_ = waiting_bytes_ = 0;
  waited_ = out_blocked_ = dead_ = false;
  UpdateWatches();
}

void Link::UpdateWatches() {
  if (dead_) {
    return;
  }
  const short in = waiting_bytes_ < kMaxWaitingBytes ? POLLIN : 0;
  const short out = out_blocked_ || (in != 0 && stream_->ReadsNeedRoom()) ? POLLOUT : 0;
  const auto handler = [this](int fd) {
    return [this, fd](short events) { OnEvents(fd, events); };
  };
  if (stream_->in_fd() == stream_->out_fd()) {
    loop_->Watch(stream_->in_fd(), static_cast<short>(in | out), handler(stream_->in_fd()));
  } else {
    loop_->Watch(stream_->in_fd(), in, handler(stream_->in_fd()));
    loop_->Watch(stream_->out_fd(), out, handler(stream_->out_fd()));
  }
}

void Link::OnEvents(int fd, short events) {
  const bool has_room = (events & POLLOUT) != 0 && fd == stream_->out_fd();
  if (has_room) {
    out_blocked_ = false;
    SendWaiting();
  }
  // A hang-up is told apart from data by reading.
  const bool may_read = fd == stream_->in_fd() && (events & (POLLIN | POLLHUP | POLLERR)) != 0;
  if (!dead_ && (may_read || (has_room && stream_->ReadsNeedRoom()))) {
    ReadRequests();
  }
  UpdateWatches();
}

void Link::ReadRequests() {
  std::array<uint8_t, 16384> buffer;
  const ssize_t got = stream_->Read(buffer.data(), buffer.size());
  if (got < 0 && (errno == EAGAIN || errno == EINTR)) {
    return;
  }
  if (got <= 0) {
    HangUp();
    return;
  }
  host_->BeforeRequests(*this);
  const auto now = EventLoop::Clock::now();
  for (DeviceRequest& request : codec_->Feed(buffer.data(), static_cast<size_t>(got), now)) {
    request.client = client_;
    Enqueue({host_->OnRequest(*this, request), now});
    if (dead_) {
      return;
    }
  }
}

void Link::Enqueue(Answer answer) {
  if (const auto& echo = answer.plan.echo; !echo.empty()) {
    // What the line cannot carry now is lost.
    [[maybe_unused]] const ssize_t sent = stream_->WriteBack(echo.data(), echo.size());
  }
  waiting_bytes_ += BytesOf(answer.plan);
  answers_.push_back(std::move(answer));
  if (answers_.size() == 1) {
    SendWaiting();
  }
}

void Link::SendBetween(std::vector<uint8_t> bytes) {
  const bool answering = next_step_ != 0 || sent_of_step_ != 0;
  if (dead_ || out_blocked_ || answering || !between_.empty()) {
    return;
  }
  between_ = std::move(bytes);
  FinishBetween();
}

bool Link::FinishBetween() {
  if (between_.empty()) {
    return true;
  }
  if (out_blocked_ || !Write(between_, &sent_of_between_)) {
    return false;
  }
  between_.clear();
  sent_of_between_ = 0;
  return true;
}

void Link::SendWaiting() {
  if (!FinishBetween()) {
    return;
  }
  while (!answers_.empty() && !dead_ && !out_blocked_ && timer_ == 0) {
    const auto& [plan, arrived] = answers_.front();
    if (next_step_ == plan.steps.size()) {
      FinishPlan();
      continue;
    }
    const SendStep& step = plan.steps[next_step_];
    if (!waited_ && !WaitFor(step, arrived)) {
      return;
    }
    if (!Write(step.bytes, &sent_of_step_)) {
      return;
    }
    waiting_bytes_ -= step.bytes.size();
    ++next_step_;
    sent_of_step_ = 0;
    waited_ = false;
    if (plan.repeat && next_step_ == plan.steps.size()) {
      --next_step_;
      waiting_bytes_ += step.bytes.size();
    }
  }
}

bool Link::Write(const std::vector<uint8_t>& bytes, size_t* sent_of_them) {
  while (*sent_of_them < bytes.size()) {
    const ssize_t sent = stream_->Write(bytes.data() + *sent_of_them, bytes.size() - *sent_of_them);
    if (sent > 0) {
      *sent_of_them += static_cast<size_t>(sent);
    } else if (sent < 0 && errno == EINTR) {
      continue;
    } else if (sent < 0 && errno == EAGAIN) {
      out_blocked_ = true;
      UpdateWatches();
      return false;
    } else {
      HangUp();
      return false;
    }
  }
  return true;
}

void Link::FinishPlan() {
  const ReplyPlan::Ending ending = answers_.front().plan.ending;
  waiting_bytes_ -= sizeof(ReplyPlan);
  answers_.pop_front();
  next_step_ = 0;
  if (ending == ReplyPlan::Ending::kReset) {
    stream_->ResetOnClose();
  }
  if (ending == ReplyPlan::Ending::kHangUp || ending == ReplyPlan::Ending::kReset) {
    HangUp();
  }
  if (ending == ReplyPlan::Ending::kRestart) {
    host_->OnRestartDue();
  }
}

bool Link::WaitFor(const SendStep& step, EventLoop::Clock::time_point arrived) {
  const auto now = EventLoop::Clock::now();
  const auto due = std::max(now + step.wait, arrived + step.not_before);
  if (due <= now) {
    return true;
  }
  timer_ = loop_->After(due - now, [this] {
    timer_ = 0;
    waited_ = true;
    SendWaiting();
    UpdateWatches();
  });
  return false;
}

void Link::HangUp() {
  if (dead_) {
    return;
  }
  dead_ = true;
  loop_->Cancel(timer_);
  timer_ = 0;
  loop_->Unwatch(stream_->in_fd());
  loop_->Unwatch(stream_->out_fd());
  bool restart = false;
  for (const Answer& answer : answers_) {
    restart = restart || answer.plan.ending == ReplyPlan::Ending::kRestart;
  }
  answers_.clear();
  if (restart) {
    host_->OnRestartDue();
  }
  host_->OnHangUp(*this);
}
