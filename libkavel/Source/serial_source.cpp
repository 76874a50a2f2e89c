#include "Source/serial_source.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "Log/logger.h"

namespace kavel::lidar {
namespace {

constexpr size_t kReadSize = 4096;
constexpr uint32_t kIdleWaitMs = 1000;
constexpr uint32_t kSendTimeoutMs = 500;
constexpr size_t kMaxAnswers = 16;
constexpr size_t kMaxPoints = 512;
constexpr size_t kVersionOffset = 7;
// Within a frame. Adapters hand bytes on in lumps, and a device may write a long frame in parts.
constexpr std::chrono::milliseconds kLongestGap{250};
// A byte on the line is a start bit, eight data bits and a stop bit; twice that, since adapters
// hand bytes on in lumps and point-cloud frames come between.
constexpr uint64_t kBitTimesPerByte = 20;

void PushBounded(std::deque<std::vector<uint8_t>>& queue, std::vector<uint8_t> item, size_t limit) {
  if (queue.size() == limit) {
    queue.pop_front();
  }
  queue.push_back(std::move(item));
}

}  // namespace

SerialSource::SerialSource(const std::string& port_name, uint32_t baud_rate_bps, int receive_type)
    : port_name_(port_name),
      baud_rate_bps_(baud_rate_bps),
      receive_type_(receive_type),
      port_(std::make_shared<SerialPort>()),
      stream_(SerialListener::kTool) {}

SerialSource::~SerialSource() { Stop(); }

bool SerialSource::Open() {
  const std::lock_guard<std::mutex> lifecycle(lifecycle_mutex_);
  if (IsOpened()) {
    return true;
  }
  StopLocked();
  if (receive_type_ != kReceiveAnswersAndPoints && receive_type_ != kReceiveAnswers) {
    const std::string reason = "not support receiveStype, open error";
    KAVEL_LOG(kError, "%s", reason.c_str());
    const std::lock_guard<std::mutex> lock(mutex_);
    refusal_ = reason;
    return false;
  }
  if (!port_->Open(port_name_, baud_rate_bps_)) {
    return false;
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  stream_.Clear();
  answers_.clear();
  points_.clear();
  running_ = true;
  thread_ = std::thread(&SerialSource::ReceivedThread, this);
  return true;
}

void SerialSource::Close() {
  Stop();
  Source::Close();
}

void SerialSource::Stop() {
  const std::lock_guard<std::mutex> lifecycle(lifecycle_mutex_);
  StopLocked();
}

void SerialSource::StopLocked() {
  Interrupt();
  if (thread_.joinable()) {
    thread_.join();
  }
  port_->Close();
}

bool SerialSource::IsOpened() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return running_ && port_->IsOpen();
}

void SerialSource::Interrupt() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    running_ = false;
  }
  port_->Interrupt();
  arrived_.notify_all();
}

bool SerialSource::SetBaudRate(uint32_t baud_rate_bps) {
  const std::lock_guard<std::mutex> lifecycle(lifecycle_mutex_);
  if (!port_->SetBaudRate(baud_rate_bps)) {
    return false;
  }
  baud_rate_bps_ = baud_rate_bps;
  return true;
}

void SerialSource::ReceivedThread() {
  std::vector<uint8_t> buffer(kReadSize);
  for (;;) {
    const int32_t count = port_->Read(buffer.data(), buffer.size(), kIdleWaitMs);
    if (count < 0) {
      break;
    }
    if (count > 0) {
      TakeBytes(buffer.data(), static_cast<size_t>(count));
    }
  }
  bool lost = false;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    lost = std::exchange(running_, false) && !port_->IsOpen();
  }
  arrived_.notify_all();
  if (lost && lost_handler_) {
    lost_handler_(LastError());
  }
}

void SerialSource::TakeBytes(const uint8_t* data, size_t size) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    counters_.bytes += size;
    last_byte_ = Clock::now();
    stream_.Append(data, size);
    while (std::optional<SerialStreamFrame> frame = stream_.Next()) {
      SortFrame(*frame);
    }
  }
  arrived_.notify_all();
}

void SerialSource::SortFrame(SerialStreamFrame& frame) {
  if (frame.kind == SerialStreamFrame::Kind::kPointCloud) {
    KeepPointCloud(frame.bytes);
  } else {
    ++counters_.answers;
    PushBounded(answers_, std::move(frame.bytes), kMaxAnswers);
  }
}

void SerialSource::KeepPointCloud(const std::vector<uint8_t>& frame) {
  ++counters_.points;
  const uint8_t* version = frame.data() + kVersionOffset;
  const bool known = version[0] == kPointCloudMajor && version[1] == kPointCloudMinor;
  if (!known) {
    KAVEL_LOG(kWarning, "serial recv error point cloud, protocol Version: %02x %02x", version[0],
              version[1]);
  }
  if (!known || mode_ != kModePointCloud || receive_type_ != kReceiveAnswersAndPoints) {
    ++counters_.dropped_points;
    return;
  }
  if (points_.size() == kMaxPoints) {
    ++counters_.dropped_points;
  }
  const auto data = frame.begin() + kPointCloudDataOffset;
  const auto end = frame.end() - static_cast<std::ptrdiff_t>(kPointCloudTailSize);
  PushBounded(points_, std::vector<uint8_t>(data, end), kMaxPoints);
}

int32_t SerialSource::Receive(UdpPacket& packet, uint16_t length, int32_t /*flags*/,
                              int32_t wait_us) {
  packet.timed_out = 0;
  std::unique_lock<std::mutex> lock(mutex_);
  arrived_.wait_for(lock, std::chrono::microseconds(std::max(wait_us, 0)),
                    [this] { return !points_.empty() || !running_; });
  if (points_.empty()) {
    packet.timed_out = running_ ? 1 : 0;
    return running_ ? 0 : -1;
  }
  const std::vector<uint8_t> data = std::move(points_.front());
  points_.pop_front();
  const size_t count = std::min({data.size(), size_t{length}, packet.data.size()});
  std::copy_n(data.begin(), count, packet.data.begin());
  packet.ip = 0;
  packet.port = 0;
  return static_cast<int32_t>(count);
}

int32_t SerialSource::Send(const uint8_t* data, uint16_t length, int32_t /*flags*/) {
  return port_->Write(data, length, kSendTimeoutMs);
}

int32_t SerialSource::ReceiveBlock(std::vector<uint8_t>& block, size_t max_size,
                                   uint32_t timeout_ms) {
  std::unique_lock<std::mutex> lock(mutex_);
  const Clock::time_point begins_by = Clock::now() + std::chrono::milliseconds(timeout_ms);
  while (running_ && answers_.empty() && Clock::now() < EndsBy(begins_by)) {
    arrived_.wait_until(lock, EndsBy(begins_by));
  }
  if (!running_) {
    return -1;
  }
  return TakeAnswer(block, max_size);
}

// A long answer that has begun in time gets the time that its announced size needs on the line, as
// long as its bytes keep coming: the size may be noise.
SerialSource::Clock::time_point SerialSource::EndsBy(Clock::time_point begins_by) const {
  const uint64_t bits = stream_.PendingLongFrame() * kBitTimesPerByte;
  const std::chrono::milliseconds line_time(bits * 1000 /
                                            std::max<uint32_t>(port_->baud_rate_bps(), 1));
  return std::max(begins_by, std::min(begins_by + line_time, last_byte_ + kLongestGap));
}

int32_t SerialSource::TakeAnswer(std::vector<uint8_t>& block, size_t max_size) {
  if (answers_.empty()) {
    SearchBehindBrokenFrame();
  }
  if (answers_.empty()) {
    answers_.push_back(stream_.Rest());
  }
  block = std::move(answers_.front());
  answers_.pop_front();
  if (block.size() > max_size) {
    block.resize(max_size);
  }
  return block.empty() ? -1 : static_cast<int32_t>(block.size());
}

// A frame that broke off may have swallowed a whole answer. Searched on a copy: without an answer
// in it, what has begun may still be completed.
void SerialSource::SearchBehindBrokenFrame() {
  SerialStream search = stream_;
  while (search.GiveUp()) {
    std::optional<SerialStreamFrame> frame = search.Next();
    if (!frame || frame->kind == SerialStreamFrame::Kind::kPointCloud) {
      continue;
    }
    SortFrame(*frame);
    stream_ = std::move(search);
    return;
  }
}

// A point-cloud frame in progress is no stale answer, and without its beginning the rest of it
// would be noise in the next one.
void SerialSource::EmptyBuffer() {
  stream_.ClearToPointCloud();
  answers_.clear();
}

void SerialSource::SetReceiveMode(int mode) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    EmptyBuffer();
    if (mode == kModeEmptyBuffer) {
      return;
    }
    mode_ = mode;
    stream_.Clear();
    points_.clear();
    counters_ = {};
  }
  port_->PurgeInput();
}

int SerialSource::receive_mode() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return mode_;
}

void SerialSource::SetLostHandler(std::function<void(const std::string&)> handler) {
  lost_handler_ = std::move(handler);
}

SerialSource::Counters SerialSource::GetCounters() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  Counters counters = counters_;
  counters.skipped_bytes = stream_.skipped_bytes();
  return counters;
}

std::string SerialSource::LastError() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return refusal_.empty() ? port_->LastError() : refusal_;
}

}  // namespace kavel::lidar
