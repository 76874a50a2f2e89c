#include "downloads/operation_log_download.h"

#include <exception>
#include <iterator>
#include <utility>

#include "CmxClient/cmx_client.h"
#include "downloads/file_names.h"
#include "files/whole_file.h"

OperationLogDownload::OperationLogDownload(Order order, std::shared_ptr<UserReport> report,
                                           std::function<void(OperationLogOutcome)> done)
    : order_(std::move(order)), report_(std::move(report)), done_(std::move(done)), thread_([this] {
        const OperationLogOutcome outcome = Run();
        over_ = true;
        done_(outcome);
      }) {}

OperationLogDownload::~OperationLogDownload() {
  Cancel();
  thread_.join();
}

DownloadSnapshot OperationLogDownload::Now() const {
  DownloadSnapshot now;
  now.running = !over_;
  now.cancelling = now.running && progress_.unwanted;
  now.part = static_cast<int>(part_) + 1;
  now.part_count = static_cast<int>(std::size(kParts));
  now.received = progress_.received;
  now.announced = progress_.announced;
  now.saved = saved_;
  return now;
}

OperationLogOutcome OperationLogDownload::Run() {
  try {
    return FetchParts();
  } catch (const std::exception& e) {
    report_->Error("Operation Log download error: " + std::string(e.what()));
    return OperationLogOutcome::kEnded;
  }
}

OperationLogOutcome OperationLogDownload::FetchParts() {
  const QString folder = order_.folder + "/operation_log";
  if (const std::string reason = MakeFolder(folder.toStdString()); !reason.empty()) {
    Complain(PathText(folder.toStdString()) + ": " + reason);
    return OperationLogOutcome::kFailed;
  }
  const QString time = TimeNow("yyyy_MM_dd_hh_mm_ss");
  bool is_complete = true;
  for (size_t part = 0; part < std::size(kParts); ++part) {
    part_ = part;
    progress_.announced = 0;
    progress_.received = 0;
    PartOutcome outcome = PartOutcome::kLost;
    if (!progress_.unwanted) {
      outcome = FetchPart(part, time);
    }
    if (progress_.unwanted && outcome != PartOutcome::kSaved) {
      report_->LogLine("The download of the operation log was cancelled.", LogType::kWarning);
      return OperationLogOutcome::kEnded;
    }
    if (outcome == PartOutcome::kLost) {
      return OperationLogOutcome::kFailed;
    }
    is_complete &= outcome == PartOutcome::kSaved;
  }
  return is_complete ? OperationLogOutcome::kSuccessful : OperationLogOutcome::kFailed;
}

OperationLogDownload::PartOutcome OperationLogDownload::FetchPart(size_t part,
                                                                  const QString& time) {
  std::vector<uint8_t> request = order_.request.payload;
  request.push_back(static_cast<uint8_t>(part));
  std::vector<uint8_t> reply;
  int32_t reason = 0;
  if (order_.sender->QueryLong(request, reply, order_.request.code, progress_, &reason) != 0) {
    if (!progress_.unwanted) {
      Complain("Operation log, part " + std::string(kParts[part]) + ": " +
               kavel::lidar::CmxClient::ErrorText(reason));
    }
    return reason > 0 ? PartOutcome::kRefused : PartOutcome::kLost;
  }
  const QString path = order_.folder + "/operation_log/" + kParts[part] + time + ".bin";
  const FileOutcome file = WriteWholeFile(path.toStdString(), BytesOf(reply));
  const std::string shown = PathText(path.toStdString());
  if (!file.written) {
    Complain(shown + ": " + file.reason);
    return PartOutcome::kLost;
  }
  saved_ += reply.size();
  files_.push_back(path);
  report_->LogLine(std::to_string(reply.size()) + " bytes saved as " + shown, LogType::kInfo);
  return PartOutcome::kSaved;
}

void OperationLogDownload::Complain(const std::string& text) {
  report_->LogLine(text, LogType::kError);
}
