// The life of a client: its connection thread, its shutdown and its settings. Exchanges are in
// cmx_client.cpp.

#include <utility>

#include "CmxClient/cmx_client.h"
#include "CmxClient/tcp_client.h"
#include "Log/logger.h"
#ifdef TEVRON_TLS
#include "CmxClient/tcp_ssl_client.h"
#endif

namespace kavel::lidar {
namespace {

constexpr uint32_t kTcp = 0;
constexpr std::chrono::milliseconds kRetryPause{100};
/// Without it a client whose time-outs were left at 0 would wait for ever.
constexpr CmxExchange::Timeouts kDefaultTimeouts{500, 500};

std::shared_ptr<ClientBase> MakeTransport(uint32_t connection_type) {
  if (connection_type == kTcp) {
    return std::make_shared<TcpClient>();
  }
#ifdef TEVRON_TLS
  constexpr uint32_t kTls = 1;
  if (connection_type == kTls) {
    return std::make_shared<TcpSslClient>();
  }
#endif
  return nullptr;
}

}  // namespace

CmxClient::CmxClient(const std::string& lidar_ip, uint16_t port, bool auto_receive,
                     uint32_t connection_type, uint8_t protocol_version,
                     const std::string& cert_path, const std::string& private_key_path,
                     const std::string& ca_path, uint32_t recv_timeout_ms, uint32_t send_timeout_ms,
                     float connect_time_limit_s, uint16_t host_port)
    : CmxClient(MakeTransport(connection_type),
                Target{lidar_ip, port, host_port, connect_time_limit_s, /*attempt_limit_s=*/1,
                       auto_receive, cert_path, private_key_path, ca_path},
                protocol_version, recv_timeout_ms, send_timeout_ms) {}

CmxClient::CmxClient(std::shared_ptr<ClientBase> transport, Target target, uint8_t protocol_version,
                     uint32_t recv_timeout_ms, uint32_t send_timeout_ms)
    : transport_(std::move(transport)),
      exchange_(transport_, protocol_version, kDefaultTimeouts),
      target_(std::move(target)),
      lidar_ip_(target_.lidar_ip),
      configured_{recv_timeout_ms, send_timeout_ms} {
  connection_thread_ = std::thread(&CmxClient::TryOpen, this);
}

CmxClient::CmxClient(std::shared_ptr<ClientBase> open_transport, uint8_t protocol_version,
                     uint32_t recv_timeout_ms, uint32_t send_timeout_ms)
    : transport_(std::move(open_transport)),
      exchange_(transport_, protocol_version, kDefaultTimeouts),
      configured_{recv_timeout_ms, send_timeout_ms} {
  if (transport_) {
    SettleConnection();
  }
  connecting_ended_ = true;
}

CmxClient::~CmxClient() {
  Shutdown();
  if (connection_thread_.joinable()) {
    connection_thread_.join();
  }
  if (transport_) {
    transport_->Close();
  }
}

void CmxClient::TryOpen() {
  const auto start = Clock::now();
  if (WaitForAddress(start)) {
    Connect(start);
  }
  {
    const std::lock_guard<std::mutex> lock(state_mutex_);
    connecting_ended_ = true;
  }
  state_changed_.notify_all();
}

bool CmxClient::WaitForAddress(Clock::time_point start) {
  std::unique_lock<std::mutex> lock(state_mutex_);
  if (!lidar_ip_.empty()) {
    return true;
  }
  KAVEL_LOG(kWarning,
            "CmxClient::CmxClient() lidar_ip_ is empty, wait recv could point to get lidar ip");
  while (true) {
    if (running_ == 0) {
      KAVEL_LOG(kInfo, "cmx connect exit 1");
      return false;
    }
    if (!lidar_ip_.empty()) {
      return true;
    }
    if (TimeIsUp(start)) {
      KAVEL_LOG(kWarning, "cmx connect : get lidar ip timeout");
      return false;
    }
    state_changed_.wait_for(lock, kRetryPause);
  }
}

void CmxClient::Connect(Clock::time_point start) {
  const std::string lidar_ip = LidarIp();
  KAVEL_LOG(kInfo, "CmxClient::CmxClient() %s %u", lidar_ip.c_str(), unsigned{target_.port});

  // A command that finds the transport open waits here until the time-outs are applied.
  const std::lock_guard<TicketMutex> exchange(exchange_mutex_);
  while (transport_ && running_ != 0) {
    if (transport_->TryOpen(target_.host_port, lidar_ip, target_.port, target_.auto_receive,
                            target_.cert_path.c_str(), target_.private_key_path.c_str(),
                            target_.ca_path.c_str(), target_.attempt_limit_s)) {
      break;
    }
    if (TimeIsUp(start) || !transport_->MayTryAgain()) {
      break;
    }
    SleepBetweenAttempts();
  }
  if (IsOpen()) {
    SettleConnection();
    KAVEL_LOG(kInfo, "cmx connect success");
  } else {
    KAVEL_LOG(kWarning, "cmx connect exit 2");
  }
}

void CmxClient::SettleConnection() {
  if (configured_.recv_ms == 0 || configured_.send_ms == 0) {
    usual_ = kDefaultTimeouts;
    exchange_.UseTimeouts(usual_);
    return;
  }
  KAVEL_LOG(kInfo, "u32RecvTimeoutMs %u", configured_.recv_ms);
  KAVEL_LOG(kInfo, "u32SendTimeoutMs %u", configured_.send_ms);
  usual_ = configured_;
  exchange_.UseTimeouts(usual_);
}

bool CmxClient::TimeIsUp(Clock::time_point start) const {
  const std::chrono::duration<float> elapsed = Clock::now() - start;
  return target_.connect_limit_s >= 0 && elapsed.count() > target_.connect_limit_s;
}

void CmxClient::SleepBetweenAttempts() {
  std::unique_lock<std::mutex> lock(state_mutex_);
  state_changed_.wait_for(lock, kRetryPause, [this] { return running_ == 0; });
}

bool CmxClient::IsOpen() { return running_ != 0 && transport_ && transport_->IsOpened(); }

bool CmxClient::WaitUntilConnected() {
  std::unique_lock<std::mutex> lock(state_mutex_);
  state_changed_.wait(lock, [this] { return connecting_ended_ || running_ == 0; });
  lock.unlock();
  return IsOpen();
}

std::string CmxClient::ConnectFailure() {
  return transport_ ? transport_->OpenFailure() : std::string();
}

void CmxClient::Shutdown() {
  {
    const std::lock_guard<std::mutex> lock(state_mutex_);
    running_ = 0;
  }
  state_changed_.notify_all();
  if (transport_) {
    transport_->Interrupt();
  }
}

void CmxClient::SetLidarIp(const std::string& ip) {
  {
    const std::lock_guard<std::mutex> lock(state_mutex_);
    if (!lidar_ip_.empty()) {
      return;
    }
    lidar_ip_ = ip;
  }
  state_changed_.notify_all();
}

std::string CmxClient::LidarIp() {
  const std::lock_guard<std::mutex> lock(state_mutex_);
  return lidar_ip_;
}

void CmxClient::SetByteSink(std::shared_ptr<ByteSink> sink) {
  const std::lock_guard<std::mutex> lock(state_mutex_);
  byte_sink_ = std::move(sink);
}

}  // namespace kavel::lidar
