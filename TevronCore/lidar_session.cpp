#include "lidar_session.h"

#include <exception>
#include <iostream>
#include <utility>

#include "CmxClient/cmx_client.h"
#include "session/posted_report.h"

LidarSession::LidarSession(SetUp set_up)
    : set_up_(std::move(set_up)), model_(std::make_shared<LidarModel>()) {}

LidarSession::~LidarSession() { End(); }

std::function<bool()> LidarSession::Current() const {
  return [then = *number_, number = std::weak_ptr<const int>(number_)] {
    const std::shared_ptr<const int> now = number.lock();
    return now != nullptr && *now == then;
  };
}

template <typename... Args>
std::function<void(Args...)> LidarSession::Later(void (LidarSession::*handler)(Args...)) {
  return [this, handler, post = set_up_.post, is_current = Current()](Args... args) {
    post([=] {
      if (is_current()) {
        (this->*handler)(args...);
      }
    });
  };
}

std::shared_ptr<UserReport> LidarSession::ReportOfNow() const {
  return std::make_shared<PostedReport>(set_up_.post, set_up_.report, Current());
}

void LidarSession::SetModel(std::shared_ptr<LidarModel> model) {
  if (model->name != model_->name) {
    loss_.reset();
  }
  model_ = std::move(model);
  SetPageInView(0);
}

void LidarSession::SetPageInView(int page) {
  page_in_view_ = page;
  if (refresh_ != nullptr) {
    refresh_->SetView({model_, page});
  }
}

bool LidarSession::Connect(const ConnectionSettings& settings) {
  if (connecting_) {
    return false;
  }
  if (state_.connected) {
    Disconnect();
  }
  settings_ = settings;
  StartAttempt(std::nullopt);
  return true;
}

void LidarSession::StartAttempt(std::optional<RestartPatience> patience) {
  ++*number_;
  connecting_ = true;
  failure_.clear();
  untrusted_.reset();
  const std::shared_ptr<UserReport> report = ReportOfNow();
  const ConnectRequest request{settings_,
                               model_,
                               set_up_.auto_receive,
                               set_up_.byte_flow,
                               std::make_shared<ReportSink>(report, LogType::kCmx),
                               patience};
  attempt_ = std::make_unique<ConnectAttempt>(
      request, report,
      ConnectAttempt::Handlers{Later(&LidarSession::EndAttempt), Later(&LidarSession::Lose)});
}

void LidarSession::AwaitAt(ConnectionSettings settings, const RestartPatience& patience,
                           std::function<void(Return)> ended) {
  Disconnect();
  if (connecting_ || state_.connected) {
    return ended(Return::kGivenUp);  // a handler has begun something else
  }
  settings_ = std::move(settings);
  give_up_at_ = std::chrono::system_clock::now() + patience.returns;
  return_ended_ = std::move(ended);
  StartAttempt(patience);
}

void LidarSession::TellReturn(Return outcome) {
  if (const auto ended = std::exchange(return_ended_, nullptr)) {
    ended(outcome);
  }
}

void LidarSession::EndAttempt() {
  const std::function<bool()> is_current = Current();
  std::shared_ptr<Connection> connection = attempt_->TakeConnection();
  failure_ = attempt_->Failure();
  if (return_ended_ == nullptr) {
    untrusted_ = attempt_->Untrusted();
  }
  attempt_.reset();
  const Return outcome = connection != nullptr ? Return::kBack : Return::kNotBack;
  if (outcome == Return::kNotBack && return_ended_ != nullptr) {
    NoteLoss("the lidar did not come back" + (failure_.empty() ? "" : " (" + failure_ + ")"));
  }
  if (connection != nullptr) {
    Adopt(std::move(connection));
  }
  if (is_current()) {
    connecting_ = false;
    TellReturn(outcome);
  }
}

// A handler may end this connection, and begin another, at every step.
void LidarSession::Adopt(std::shared_ptr<Connection> connection) {
  const std::function<bool()> is_current = Current();
  connection_ = std::move(connection);
  model_->table->ForgetReadings();
  read_failures_.Clear();
  is_silent_ = false;
  loss_.reset();
  next_address_.clear();
  if (model_->connect_type == kNetworkLink) {
    refresh_ = std::make_unique<PageRefresh>(
        connection_->sender(), state_, read_failures_, ReportOfNow(),
        PageRefresh::View{model_, page_in_view_},
        PageRefresh::Handlers{Later(&LidarSession::ShowPage), Later(&LidarSession::ShowCaughtUp)});
  }
  state_.connected = true;
  set_up_.report.LogLine("Lidar connected", LogType::kInfo);
  set_up_.handlers.adopted();
  if (!is_current()) {
    return;
  }
  // A serial pair is no longer connecting when it is announced; the others are until the end.
  if (model_->connect_type == kSerialPair) {
    connecting_ = false;
  }
  set_up_.handlers.state_changed();
  if (is_current() && model_->connect_type != kNetworkLink) {
    StartReadingFacts();
  }
}

void LidarSession::ShowPage() { set_up_.handlers.page_read(); }
void LidarSession::ShowCaughtUp() { set_up_.handlers.caught_up(); }

std::chrono::milliseconds LidarSession::TakeReadingTime() {
  return std::chrono::seconds(std::exchange(is_silent_, false) ? 0 : 1);
}

void LidarSession::ReadSoon(std::shared_ptr<LidarModel> model, std::vector<const VarInfo*> vars) {
  if (refresh_ != nullptr && !vars.empty()) {
    refresh_->ReadSoon(std::move(model), std::move(vars));
  }
}

void LidarSession::StartReadingFacts() {
  facts_reading_ =
      std::make_unique<FactsReading>(connection_->sender(), state_, model_->connect_type,
                                     ReportOfNow(), Later(&LidarSession::TakeFacts));
  facts_reading_->Request();
  reading_facts_ = true;
  set_up_.handlers.reading_facts_changed();
}

void LidarSession::TakeFacts(DeviceFacts facts) {
  facts_ = std::move(facts);
  facts_read_at_ = std::chrono::system_clock::now();
  // Only the first reading of a connection keeps the user waiting, the later ones are quiet.
  const bool was_first = std::exchange(reading_facts_, false);
  set_up_.handlers.facts_changed();
  if (was_first) {
    set_up_.handlers.reading_facts_changed();
  }
}

void LidarSession::Lose(const std::string& reason) {
  if (return_ended_ != nullptr) {
    return;  // a port may go and come back with the lidar that restarts
  }
  set_up_.report.LogLine(reason, LogType::kError);
  if (!keeps_when_lost_) {
    NoteLoss(reason);
    set_up_.report.Error(reason);
    Stop();
  }
}

void LidarSession::NoteLoss(const std::string& reason) {
  loss_ = {reason, std::chrono::system_clock::now()};
}

void LidarSession::NoteNextAddress(const std::string& address) {
  next_address_ = address;
  ++next_addresses_;
}

void LidarSession::Stop() {
  try {
    Disconnect();
    // The line for connect type 2 is meant: the port is freed and the screens are told as for the
    // others, but the log says otherwise.
    const bool is_known = model_->connect_type != kSerialCmx;
    set_up_.report.LogLine(is_known ? "Lidar disconnected" : "connect type is not support",
                           LogType::kInfo);
  } catch (const std::exception&) {
    std::cout << "stop error\n" << std::flush;
  }
}

void LidarSession::Disconnect() {
  const bool was_reading_facts = reading_facts_;
  End();
  if (was_reading_facts) {
    set_up_.handlers.reading_facts_changed();
  }
  set_up_.handlers.facts_changed();
  set_up_.handlers.state_changed();
  TellReturn(Return::kGivenUp);
}

void LidarSession::End() {
  ++*number_;
  state_.connected = false;
  connecting_ = false;
  untrusted_.reset();
  attempt_.reset();
  // Closing first wakes the workers out of their exchange.
  if (connection_ != nullptr) {
    connection_->Close();
  }
  refresh_.reset();
  facts_reading_.reset();
  connection_.reset();
  facts_ = {};
  facts_read_at_.reset();
  reading_facts_ = false;
  keeps_when_lost_ = false;
}

bool LidarSession::CheckLink() {
  const std::shared_ptr<kavel::lidar::CommandSender> to_lidar = sender();
  if (to_lidar == nullptr) {
    return false;
  }
  int32_t error = kavel::lidar::kNotConnected;
  if (keeps_when_lost_ || (to_lidar->IsOpen() && LidarAnswers(*to_lidar, &error))) {
    loss_.reset();
    return true;
  }
  const bool is_broken =
      error == kavel::lidar::kNotConnected || error == kavel::lidar::kSendIncomplete;
  NoteLoss(is_broken ? "the connection is broken" : kavel::lidar::CmxClient::ErrorText(error));
  set_up_.report.LogLine("The lidar does not answer the link check: " + loss_->reason,
                         LogType::kWarning);
  return false;
}

std::shared_ptr<kavel::lidar::CommandSender> LidarSession::sender() const {
  return connection_ == nullptr ? nullptr : connection_->sender();
}

std::optional<UartArrivals> LidarSession::Uart() const {
  if (connection_ == nullptr || model_->connect_type != kSerialPair) {
    return std::nullopt;
  }
  const auto counters = connection_->serial()->AnswerCounters();
  return UartArrivals{settings_.serial_port_232, counters.points, counters.skipped_bytes};
}

bool LidarSession::MayReadPages() const {
  return model_->connect_type == kNetworkLink && connection_ != nullptr && sender()->IsOpen() &&
         state_.MayRead();
}

void LidarSession::ReadFactsAgain() {
  if (facts_reading_ != nullptr) {
    facts_reading_->RequestQuietly();
  }
}

void LidarSession::ReadFactsAfterRestart() {
  if (facts_reading_ != nullptr) {
    facts_reading_->RequestAfterRestart();
  }
}
