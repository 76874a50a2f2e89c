#include "downloads/log_download.h"

#include <exception>
#include <vector>

#include "downloads/file_names.h"
#include "files/whole_file.h"
#include "variables/log_variables.h"

const char* DownloadObstacle(const LinkState& state) {
  if (state.upgrading) {
    return "Please wait for the lidar to upgrade completely";
  }
  if (state.applying) {
    return LinkState::kAppliesSettings;
  }
  return state.downloading ? "Please wait for the operation log to download completely" : nullptr;
}

int LogDownload::Run(const QUrl& folder, const QString& name) {
  if (const char* obstacle = DownloadObstacle(set_up_.state)) {
    set_up_.report.Error(obstacle);
    return -1;
  }
  set_up_.set_downloading(true);
  try {
    return Fetch(folder, name);
  } catch (const std::exception& e) {
    set_up_.set_downloading(false);
    set_up_.report.Error(name.toStdString() + " download error: " + e.what());
    return -1;
  }
}

int LogDownload::Fetch(const QUrl& folder, const QString& name) {
  const QString file = FileNamePart(name) + '_' + TimeNow("yyyyMMdd-hhmmss") + ".bin";
  const QString path = LocalFolderOf(folder) + '/' + file;
  const std::string called = name.toStdString();
  const WireCommand request = DownloadRequestOf(set_up_.table, called, called);
  if (!set_up_.state.connected || set_up_.sender == nullptr) {
    set_up_.set_downloading(false);
    set_up_.report.Error("Please connect to lidar first");
    return -1;
  }

  std::vector<uint8_t> reply;
  kavel::lidar::ReplyProgress unused;
  int32_t reason = 0;
  if (set_up_.sender->QueryLong(request.payload, reply, request.code, unused, &reason) != 0) {
    set_up_.set_downloading(false);
    set_up_.report.Error(called + " download failed. return code: " + std::to_string(reason));
    return -1;
  }
  const bool saved = Save(path, name, reply);
  // Meant: what was fetched counts as downloaded, also when it could not be saved.
  set_up_.set_downloading(false);
  set_up_.report.Success(called + " download successful.");
  return saved ? 0 : -1;
}

bool LogDownload::Save(const QString& path, const QString& name,
                       const std::vector<uint8_t>& bytes) {
  const FileOutcome file = WriteWholeFile(path.toStdString(), BytesOf(bytes));
  const std::string shown = PathText(path.toStdString());
  if (file.written) {
    file_ = path;
    set_up_.report.LogLine(std::to_string(bytes.size()) + " bytes saved as " + shown,
                           LogType::kInfo);
    return true;
  }
  set_up_.report.LogLine(shown + ": " + file.reason, LogType::kError);
  set_up_.report.Error(name.toStdString() + (file.opened ? ": Failed to write binary data to file."
                                                         : ": Failed to open file."));
  return false;
}
