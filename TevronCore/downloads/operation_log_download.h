#pragma once

#include <QString>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "CmxClient/command_sender.h"
#include "downloads/download_status.h"
#include "session/user_report.h"
#include "variables/command_code.h"

/// How the download of the operation log ended.
enum class OperationLogOutcome {
  kSuccessful,
  kFailed,
  kEnded,  ///< cancelled, or the user has been told what went wrong
};

/// Saves the four parts of the operation log to files of their own, one request a part, on a thread
/// of its own. What has been saved stays, whatever comes after it.
///
/// The files are "operation_log/bsw_warning_<time>.bin" and so on below the folder, with one time
/// for all. A part that the lidar refuses is left out, and the others are fetched all the same; a
/// lidar that does not answer, or a file that cannot be written, ends the download.
class OperationLogDownload {
 public:
  /// The beginnings of the names of the parts, in the order in which they are asked for.
  static constexpr const char* kParts[] = {"bsw_warning_", "asw_warning_", "bsw_error_",
                                           "asw_error_"};

  struct Order {
    std::shared_ptr<kavel::lidar::CommandSender> sender;
    WireCommand request;  ///< each part's number, from 0, is appended to it
    QString folder;
  };

  /// Begins. `report` gets log lines, and an error where something threw; `done` is called last, on
  /// the download's thread, and must not destroy the object.
  OperationLogDownload(Order order, std::shared_ptr<UserReport> report,
                       std::function<void(OperationLogOutcome)> done);
  /// Cancels and waits: one receive time-out, less when the connection has been closed.
  ~OperationLogDownload();
  OperationLogDownload(const OperationLogDownload&) = delete;
  OperationLogDownload& operator=(const OperationLogDownload&) = delete;

  /// Ends it soon, as kEnded unless it was over already. Any thread.
  void Cancel() { progress_.unwanted = true; }

  /// Any thread.
  DownloadSnapshot Now() const;

  /// The files that were saved; once `done` has been called.
  const std::vector<QString>& files() const { return files_; }

 private:
  enum class PartOutcome { kSaved, kRefused, kLost };

  OperationLogOutcome Run();
  OperationLogOutcome FetchParts();
  PartOutcome FetchPart(size_t part, const QString& time);
  void Complain(const std::string& text);

  const Order order_;
  const std::shared_ptr<UserReport> report_;
  const std::function<void(OperationLogOutcome)> done_;
  kavel::lidar::ReplyProgress progress_;
  std::atomic<size_t> part_{0};
  std::atomic<uint64_t> saved_{0};
  std::vector<QString> files_;  ///< of the download's thread
  std::atomic<bool> over_{false};
  std::thread thread_;
};
