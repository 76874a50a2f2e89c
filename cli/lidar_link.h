#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "CmxClient/command_sender.h"
#include "context.h"
#include "lidar_session.h"
#include "maintenance/maintenance.h"
#include "task_queue.h"

/// The models that there are tables for. Throws a Failure when there is none.
std::vector<std::string> InstalledModels(const Context& context);

/// The model that the command line names. Throws a Failure for none, and for one whose table cannot
/// be used.
std::shared_ptr<LidarModel> LoadNamedModel(const Context& context);

/// A lidar's certificate, as results tell it.
QJsonObject CertificateObject(const kavel::lidar::TlsCertificate& certificate);

/// One lidar for one command: the session on this thread, from connecting to the proper end of the
/// link. Every wait ends with a Failure when the user has enough.
class LidarLink {
 public:
  /// Throws a Failure for a command line that does not say where the lidar is, or says it in
  /// another way than the model is reached. `context` has to outlive the link.
  explicit LidarLink(Context& context);
  ~LidarLink();
  LidarLink(const LidarLink&) = delete;
  LidarLink& operator=(const LidarLink&) = delete;

  /// Returns with a lidar that answers. Throws a Failure when none does: after one attempt, or with
  /// a time limit of the command line when that is over.
  void Connect();

  /// Throws a Failure that says where the work of `command` is done, unless the model's variables
  /// are read over this link.
  void NeedPages(const std::string& command) const;

  /// Has the model show what this lidar's hardware version measures, if there is a table for it;
  /// one exchange. Variables taken before may be others afterwards.
  void TakeMonitorVersion();

  /// The lidar restarts: connects to it again once it answers. Returns how many seconds that took;
  /// throws a Failure when it does not come back.
  double AwaitReturn();

  /// Runs what workers post until `done`. `tick` (may be empty) is called ten times a second for
  /// whoever looks at the progress. Throws a Failure when interrupted, by then `done` or not.
  void Wait(const std::function<bool()>& done, const std::function<void()>& tick = {});
  /// Sleeps. Throws a Failure when interrupted.
  void SleepUntil(TaskQueue::Clock::time_point time);

  LidarSession& session() { return session_; }
  const std::shared_ptr<LidarModel>& model() const { return session_.model(); }
  /// Throws a Failure once the link is lost.
  kavel::lidar::CommandSender& sender() const;
  Maintenance maintenance() {
    return Maintenance({session_.sender().get(), session_.state(), model()->connect_type},
                       context_.report);
  }
  Post MakePost() const { return queue_.MakePost(); }
  /// How long a lidar that restarts may take.
  RestartPatience patience() const;
  /// Where it is, as "127.0.0.1:9347" or "/dev/ttyUSB0".
  std::string Address() const;

  /// While it lives, an interrupt closes the link at once: for an exchange that may take long.
  class Interruptible {
   public:
    explicit Interruptible(LidarLink& link);
    ~Interruptible() { link_.WakeWhenInterrupted(); }
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;

   private:
    LidarLink& link_;
  };

 private:
  void TakePlace(const LidarModel& model);
  void TakeSerialPorts(const LidarModel& model);
  void TakeHostPort(const LidarModel& model);
  void TakePin(const LidarModel& model);
  bool TryOnce(TaskQueue::Clock::time_point deadline);
  void WakeWhenInterrupted();

  Context& context_;
  TaskQueue queue_;
  ConnectionSettings settings_;
  LidarSession session_;
};
