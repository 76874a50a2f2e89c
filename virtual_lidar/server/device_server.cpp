#include "server/device_server.h"

#include <algorithm>
#include <cstdio>
#include <system_error>
#include <utility>

#include "Platform/key_file.h"
#include "Wire/serial_stream.h"
#include "device/state_dump.h"
#include "wire/cmx_codec.h"
#include "wire/serial_codec.h"

namespace {

// More clients at a time than this are turned away.
constexpr size_t kMaxClients = 64;
constexpr std::chrono::milliseconds kRetryListening{100};
// A client that has left more than this unread on the UART does not follow the point cloud, and an
// answer should not have to wait behind it.
constexpr size_t kMostUnreadOnUart = 2 * PointCloudSender::kPacketSize;
static_assert(PointCloudSender::kPacketSize <= kavel::lidar::kPointCloudMaxData);

std::string HexByte(uint8_t byte) {
  char text[8] = "";
  snprintf(text, sizeof text, "0x%02X", byte);
  return text;
}

std::string ByteCount(size_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

}  // namespace

struct DeviceServer::Client {
  Client(DeviceServer* server, UniqueFd socket, const std::string& peer)
      : fd(std::move(socket)),
        link(server->loop_, server, server->StreamOver(fd.get()),
             std::make_unique<CmxCodec>(server->setup_.protocol), peer) {}

  UniqueFd fd;  // outlives the link that uses it
  Link link;
};

DeviceServer::DeviceServer(EventLoop* loop, VirtualDevice* device, FaultBox* faults,
                           const LineLog* log, ServerSetup setup)
    : loop_(loop),
      device_(device),
      faults_(faults),
      log_(log),
      setup_(std::move(setup)),
      listener_(loop, [this](UniqueFd socket, const std::string& peer) {
        OnClient(std::move(socket), peer);
      }) {}

DeviceServer::~DeviceServer() = default;

bool DeviceServer::Start(std::string* error) {
  if (!setup_.dump_file.empty() && !WriteDump(*device_, setup_.dump_file, error)) {
    return false;
  }
  try {
    if (setup_.tcp_port && !OpenTcp(error)) {
      return false;
    }
    if (setup_.serial != ServerSetup::Serial::kNone) {
      OpenSerial();
    }
    if (tls_) {
      log_->Write("TLS certificate " + ShownCertificate(tls_));
    }
    if (setup_.tcp_port) {
      log_->Write("listening on 127.0.0.1:" + std::to_string(listener_.port()));
    }
    if (setup_.point_cloud) {
      point_cloud_ = std::make_unique<PointCloudSender>(
          loop_, setup_.point_cloud->packets_per_second, UdpOutlet(*setup_.point_cloud));
    }
    if (setup_.serial == ServerSetup::Serial::kPair && setup_.uart_points_per_second != 0) {
      uart_points_ = std::make_unique<PointCloudSender>(
          loop_, setup_.uart_points_per_second,
          [this](const std::vector<uint8_t>& packet) { SendOnUart(packet); });
    }
  } catch (const std::system_error& failure) {
    *error = failure.what();
    return false;
  }
  return true;
}

bool DeviceServer::OpenTcp(std::string* error) {
  if (setup_.tls) {
    tls_ = MakeTlsServer(*setup_.tls, error);
    if (!tls_) {
      return false;
    }
    if (const auto warning = kavel::lidar::KeyFileWarning(setup_.tls->key); !warning.empty()) {
      log_->Write(warning);
    }
  }
  if (!listener_.Open(*setup_.tcp_port) && !(setup_.other_port_will_do && listener_.Open(0))) {
    *error = listener_.error();
    return false;
  }
  return true;
}

std::vector<std::string> DeviceServer::SerialPortNames() const {
  std::vector<std::string> names;
  for (const auto* line : {line_.get(), answer_line_.get()}) {
    if (line != nullptr) {
      names.push_back(line->name());
    }
  }
  return names;
}

void DeviceServer::Dump() {
  std::string error;
  if (!setup_.dump_file.empty() && !WriteDump(*device_, setup_.dump_file, &error)) {
    log_->Write(error);
  }
}

std::unique_ptr<ByteStream> DeviceServer::StreamOver(int socket) const {
  if (tls_) {
    return std::make_unique<TlsStream>(tls_, socket);
  }
  return std::make_unique<PlainStream>(socket, socket);
}

void DeviceServer::OnClient(UniqueFd socket, const std::string& peer) {
  if (clients_.size() >= kMaxClients) {
    log_->Write("turned away " + peer + ": too many clients");
    return;
  }
  clients_.push_back(std::make_unique<Client>(this, std::move(socket), peer));
}

// A UART does not ask whether anybody listens: what finds no room is lost.
void DeviceServer::SendOnUart(const std::vector<uint8_t>& packet) {
  const bool has_room = answer_line_->unread() <= kMostUnreadOnUart &&
                        (slow_answer_line_ == nullptr || slow_answer_line_->HasTakenAll());
  if (has_room && !away_) {
    serial_link_->SendBetween(kavel::lidar::BuildPointCloudFrame(packet));
  }
}

void DeviceServer::OpenSerial() {
  serial_link_.reset();
  slow_line_.reset();
  slow_answer_line_.reset();
  line_ = std::make_unique<PseudoTerminal>(loop_, [this] { OnPortClosed(); });
  const int request_fd = DeviceEnd(*line_, &slow_line_);
  int answer_fd = request_fd;
  if (setup_.serial == ServerSetup::Serial::kPair) {
    answer_line_ = std::make_unique<PseudoTerminal>(loop_, [] {});
    answer_fd = DeviceEnd(*answer_line_, &slow_answer_line_);
    log_->Write("serial port 485 " + line_->name());
    log_->Write("serial port 232 " + answer_line_->name());
  } else {
    log_->Write("serial port " + line_->name());
  }
  LinkHost* const host = this;
  serial_link_ =
      std::make_unique<Link>(loop_, host, std::make_unique<PlainStream>(request_fd, answer_fd),
                             std::make_unique<SerialCodec>(), line_->name());
}

int DeviceServer::DeviceEnd(const PseudoTerminal& line, std::unique_ptr<SlowLine>* slow) {
  if (!setup_.line_speed.is_limited()) {
    return line.fd();
  }
  *slow =
      std::make_unique<SlowLine>(loop_, line.fd(), setup_.line_speed, [this] { NoticeClosing(); });
  return (*slow)->device_fd();
}

void DeviceServer::OnPortClosed() {
  for (auto* line : {slow_line_.get(), slow_answer_line_.get()}) {
    if (line != nullptr) {
      line->Reset();
    }
  }
  ResetSerialLink();
}

void DeviceServer::NoticeClosing() {
  for (auto* line : {line_.get(), answer_line_.get()}) {
    if (line != nullptr) {
      line->NoticeClosing();
    }
  }
}

void DeviceServer::ResetSerialLink() {
  // A line that is about to be replaced still gets its last events.
  if (serial_link_) {
    serial_link_->Reset(std::make_unique<SerialCodec>());
  }
}

void DeviceServer::BeforeRequests(Link& link) {
  // On a slow line the news is as old as the bytes that have just entered it.
  if (&link == serial_link_.get() && !slow_line_) {
    NoticeClosing();
  }
}

ReplyPlan DeviceServer::OnRequest(Link& link, const DeviceRequest& request) {
  if (away_) {
    return {};
  }
  faults_->TakeStruck();
  if (faults_->CountRequestAndCheckSilence()) {
    LogRequest(link, request, "ignored", "no answer");
    return {};
  }
  std::string what;
  const DeviceReply reply = device_->Answer(request, link.auth(), faults_, &what);
  // The dump is there before the client can have its answer.
  if (device_->TakeChanged()) {
    Dump();
  }
  const std::string outcome =
      "return code " + std::to_string(reply.return_code) + ", " + ByteCount(reply.payload.size());
  ReplyPlan plan;
  if (reply.aftermath == Aftermath::kPowerCycle) {
    OnRestartDue();
  } else {
    plan = PlanReply(link.codec(), request, reply, faults_);
  }
  LogRequest(link, request, what, plan.steps.empty() ? "no answer" : outcome);
  return plan;
}

void DeviceServer::LogRequest(const Link& link, const DeviceRequest& request,
                              const std::string& what, const std::string& outcome) {
  std::string line = "request " + HexByte(request.code) + " (" + ByteCount(request.payload.size()) +
                     ") from " + link.name() + ": " + what + ", " + outcome;
  const std::vector<std::string> struck = faults_->TakeStruck();
  for (size_t i = 0; i < struck.size(); ++i) {
    line += (i == 0 ? " [fault: " : ", ") + struck[i];
  }
  if (!struck.empty()) {
    line += "]";
  }
  log_->Write(line);
}

void DeviceServer::OnHangUp(Link& link) {
  if (const std::string failure = link.stream().Failure(); !failure.empty()) {
    log_->Write("dropped " + link.name() + ": " + failure);
  }
  // The link is still in use further up the stack.
  loop_->After({}, [this, gone = &link] {
    if (gone == serial_link_.get()) {
      // What a client sees is an adapter that was pulled; the new one has another name.
      OpenSerial();
      return;
    }
    const auto found = std::find_if(clients_.begin(), clients_.end(),
                                    [gone](const auto& client) { return &client->link == gone; });
    if (found != clients_.end()) {
      clients_.erase(found);
    }
  });
}

void DeviceServer::OnRestartDue() {
  if (std::exchange(restart_pending_, true)) {
    return;
  }
  // From here on nothing is heard, not even what came in one piece with the request.
  away_ = true;
  loop_->After({}, [this] { BeginRestart(); });
}

void DeviceServer::BeginRestart() {
  restart_pending_ = false;
  listener_.Close();
  clients_.clear();
  ResetSerialLink();
  loop_->After(setup_.restart_time, [this] { EndRestart(); });
}

void DeviceServer::EndRestart() {
  if (setup_.tcp_port && !listener_.Open(listener_.port())) {
    // Somebody else has the port for the moment.
    loop_->After(kRetryListening, [this] { EndRestart(); });
    return;
  }
  away_ = false;
  log_->Write("restarted");
}
