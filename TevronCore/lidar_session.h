#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CmxClient/command_sender.h"
#include "connection/connect_attempt.h"
#include "connection/connection.h"
#include "connection/connection_settings.h"
#include "connection/link_snapshot.h"
#include "connection/uart_arrivals.h"
#include "console/byte_flow.h"
#include "maintenance/device_facts.h"
#include "maintenance/facts_reading.h"
#include "pages/page_refresh.h"
#include "pages/read_failures.h"
#include "session/lidar_model.h"
#include "session/link_state.h"
#include "session/post.h"
#include "session/user_report.h"

/// One lidar from connecting to it until it is let go or lost: the attempt, the connection, the
/// reading of the page in view and of what the lidar says about itself. Needs no screen; the
/// manager builds it, and so can any other program.
///
/// All members are for the owner's thread, on which every handler runs as well. What a worker says
/// reaches the owner through the Post of the set-up, and is dropped there when the connection that
/// it speaks of has ended since.
class LidarSession {
 public:
  /// What the owner is told. A handler may end the connection and begin another, and must not
  /// destroy the session. Each has to be set.
  struct Handlers {
    std::function<void()> adopted;        ///< a lidar was connected; no value of it is known yet
    std::function<void()> page_read;      ///< the page in view was read in its turn
    std::function<void()> caught_up;      ///< what ReadSoon asked for was read
    std::function<void()> state_changed;  ///< state().connected
    std::function<void()> facts_changed;
    std::function<void()> reading_facts_changed;
  };
  struct SetUp {
    Post post;
    UserReport& report;                   ///< has to outlive the session and what was posted
    bool auto_receive = true;             ///< handed to the network client
    std::shared_ptr<ByteFlow> byte_flow;  ///< shows the bytes of every exchange
    Handlers handlers;
  };

  explicit LidarSession(SetUp set_up);
  /// Ends everything without a word, at most 1.5 s later whatever the lidar does.
  ~LidarSession();
  LidarSession(const LidarSession&) = delete;
  LidarSession& operator=(const LidarSession&) = delete;

  /// What the destructor does. Nothing but destruction may follow; for an owner whose other workers
  /// use the connection and have to be waited for.
  void Close() { End(); }

  /// What is connected next; page 0 is in view. A connection or an attempt belongs to the model
  /// that it was made for: end it first, unless the new model has the same name.
  void SetModel(std::shared_ptr<LidarModel> model);
  const std::shared_ptr<LidarModel>& model() const { return model_; }

  /// Starts an attempt, which ends a connection that there is. False while one is running.
  bool Connect(const ConnectionSettings& settings);
  bool connecting() const { return connecting_; }

  /// How waiting for a lidar that restarts has ended.
  enum class Return { kBack, kNotBack, kGivenUp };
  /// Ends the connection, whose lidar restarts, and connects to it again with the same settings,
  /// all without a message: the lidar has the time of `patience` to answer. connecting() is true
  /// meanwhile. `ended` is told once: kGivenUp when Stop, another attempt or another model came
  /// between. Not told on destruction.
  void AwaitReturn(const RestartPatience& patience, std::function<void(Return)> ended) {
    AwaitAt(settings_, patience, std::move(ended));
  }
  /// The same for a lidar that is reached otherwise from now on.
  void AwaitAt(ConnectionSettings settings, const RestartPatience& patience,
               std::function<void(Return)> ended);

  /// Network settings were taken: after its restart the lidar is reached there.
  void NoteNextAddress(const std::string& address);

  /// How it stands with the connection.
  LinkSnapshot LinkNow() const;

  /// While set, the loss of a port ends nothing and is told in the log alone, and CheckLink does
  /// not ask: whoever set it sees to the connection afterwards. The next connection begins without.
  void KeepWhenLost(bool keep) { keeps_when_lost_ = keep; }

  /// Ends attempt and connection in any state, and says so in the log.
  void Stop();

  /// One exchange, or two: true when the lidar answers. While an upgrade has the line to itself, or
  /// has just ordered a restart, the lidar is not asked and counts as there.
  bool CheckLink();

  /// Where commands go; null without a connection.
  std::shared_ptr<kavel::lidar::CommandSender> sender() const;
  /// Null without a connection. For work that outlasts an exchange: whoever keeps it has to expect
  /// that the session closes it.
  const std::shared_ptr<Connection>& connection() const { return connection_; }
  /// What arrives on the UART; none unless connected by a pair of serial ports. Waits for nothing.
  std::optional<UartArrivals> Uart() const;
  /// What the connection or the last attempt was made with.
  const ConnectionSettings& settings() const { return settings_; }
  LinkState& state() { return state_; }
  const LinkState& state() const { return state_; }

  /// Whether variables may be read now.
  bool MayReadPages() const;
  /// The page that is read again every 3 s.
  void SetPageInView(int page);
  int page_in_view() const { return page_in_view_; }

  /// How long a screen may wait for a page: not at all after a write that found no answer.
  std::chrono::milliseconds TakeReadingTime();
  void NoteWrite(bool was_answered) { is_silent_ = !was_answered; }
  /// Reads in the background, at once, what a page read of `model` had no time for.
  void ReadSoon(std::shared_ptr<LidarModel> model, std::vector<const VarInfo*> vars);
  /// What this lidar could not be read for; for every reader of its pages.
  ReadFailures& read_failures() { return read_failures_; }

  /// What a serial-attached lidar says about itself; unread without a connection.
  const DeviceFacts& facts() const { return facts_; }
  /// Whether the first reading of this connection's facts is running.
  bool reading_facts() const { return reading_facts_; }
  /// Read anew after a command that may have changed them: quietly, that is with failures in the
  /// log alone, and after a restart, whose failure the user has to hear of. Over the network, where
  /// the pages show everything, they do nothing.
  void ReadFactsAgain();
  void ReadFactsAfterRestart();

  /// The serial or part number, kUnreadFact while it is unknown. That of a network model is the
  /// variable "SN" or "PN".
  std::string SerialNumber() const { return Identity("SN", facts_.serial_number); }
  std::string PartNumber() const { return Identity("PN", facts_.part_number); }
  /// What runs on it, as far as it was read: "" while it is unknown. That of a network model is the
  /// variable "SWVER_YMD".
  std::string RunningVersion() const;

 private:
  /// Tells whether the connection or attempt of the moment of the call is still the current one.
  std::function<bool()> Current() const;
  /// `handler` as something that a worker may call: it runs on the owner's thread, if the
  /// connection that is current now still is then.
  template <typename... Args>
  std::function<void(Args...)> Later(void (LidarSession::*handler)(Args...));
  std::shared_ptr<UserReport> ReportOfNow() const;

  void StartAttempt(std::optional<RestartPatience> patience);
  void EndAttempt();
  void TellReturn(Return outcome);
  void Adopt(std::shared_ptr<Connection> connection);
  void StartReadingFacts();
  void TakeFacts(DeviceFacts facts);
  void ShowPage();
  void ShowCaughtUp();
  void Lose(const std::string& reason);
  void NoteLoss(const std::string& reason);
  void Disconnect();
  void End();
  /// The variables of the page in view that a lidar is asked for.
  std::vector<const VarInfo*> ReadInView() const;
  std::string Identity(const char* name, const std::string& asked) const;

  const SetUp set_up_;
  /// Counts the attempts and their ends. Shared with what is posted, which may outlive the session.
  const std::shared_ptr<int> number_ = std::make_shared<int>(0);
  std::shared_ptr<LidarModel> model_;
  int page_in_view_ = 0;
  LinkState state_;
  ReadFailures read_failures_;
  bool is_silent_ = false;  ///< a write found no answer, and no page was read since
  DeviceFacts facts_;
  bool reading_facts_ = false;
  bool connecting_ = false;
  bool keeps_when_lost_ = false;
  ConnectionSettings settings_;
  std::function<void(Return)> return_ended_;  ///< set while a lidar that restarts is waited for
  std::chrono::system_clock::time_point give_up_at_;  ///< of that wait
  std::string failure_;                               ///< of the last attempt
  std::optional<UntrustedLidar> untrusted_;           ///< that it met
  std::optional<LinkLoss> loss_;
  std::string next_address_;
  int next_addresses_ = 0;
  std::optional<std::chrono::system_clock::time_point> facts_read_at_;
  // Destroyed from the last to the first: the threads are gone before what they use.
  std::shared_ptr<Connection> connection_;
  std::unique_ptr<PageRefresh> refresh_;
  std::unique_ptr<FactsReading> facts_reading_;
  std::unique_ptr<ConnectAttempt> attempt_;
};
