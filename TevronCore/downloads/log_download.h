#pragma once

#include <QString>
#include <QUrl>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "CmxClient/command_sender.h"
#include "session/link_state.h"
#include "session/user_report.h"
#include "variables/config_parser.h"

/// Why no download can begin now, as a sentence for the user; null when one can. Without a
/// connection only the others' work is looked at: what a table does not offer is said first.
const char* DownloadObstacle(const LinkState& state);

/// Saves what one variable stands for to a file, with one exchange, on the calling thread.
class LogDownload {
 public:
  /// `sender` is null without a connection; what is pointed to has to outlive the object.
  /// `set_downloading` says that the download begins or ends, the latter before its outcome is
  /// reported.
  struct SetUp {
    kavel::lidar::CommandSender* sender;
    const LinkState& state;
    const ConfigParser& table;
    UserReport& report;
    std::function<void(bool)> set_downloading;
  };

  explicit LogDownload(SetUp set_up) : set_up_(std::move(set_up)) {}

  /// Saves the variable named `name` as "name_yyyyMMdd-hhmmss.bin" in `folder`; characters that no
  /// file name may hold become "_". Returns 0 when the file is there, -1 otherwise; what went wrong
  /// is reported. The bytes are not shown in the byte flow.
  int Run(const QUrl& folder, const QString& name);

  /// The file that Run saved; empty when it saved none.
  const QString& file() const { return file_; }

 private:
  int Fetch(const QUrl& folder, const QString& name);
  bool Save(const QString& path, const QString& name, const std::vector<uint8_t>& bytes);

  const SetUp set_up_;
  QString file_;
};
