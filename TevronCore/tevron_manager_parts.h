#pragma once

#include <QString>
#include <memory>
#include <string>

#include "CmxClient/command_sender.h"
#include "connection/connection_settings.h"
#include "console/byte_flow.h"
#include "console/command_console.h"
#include "downloads/operation_log_download.h"
#include "firmware_upgrade.h"
#include "lidar_monitor.h"
#include "lidar_session.h"
#include "lidar_settings.h"
#include "maintenance/maintenance.h"
#include "pages/edit_session.h"
#include "session/posted_report.h"
#include "shown_pages.h"
#include "tevron_manager.h"
#include "variables/config_folder.h"

/// Shows reports on the manager's own thread, at once.
class ScreenReport : public UserReport {
 public:
  explicit ScreenReport(TevronManager& manager) : manager_(manager) {}
  void Error(const std::string& text) override;
  void ErrorWithRemedy(const std::string& text, const std::string& remedy) override;
  void Success(const std::string& text) override;
  void LogLine(const std::string& text, LogType type) override;

 private:
  TevronManager& manager_;
};

/// What the manager owns. Members are destroyed from the last to the first, so that the session and
/// its threads are gone before what they report to.
struct TevronManager::Parts {
  Parts(TevronManager& manager, bool auto_receive, const std::string& table_path);
  ~Parts();

  /// Turns what the session says into signals.
  static LidarSession::Handlers HandlersOf(TevronManager& manager);

  const ConfigFolder config;
  ScreenReport report;
  /// For what is said on another thread, or before the screens exist.
  const std::shared_ptr<PostedReport> posted;
  const std::shared_ptr<ByteFlow> byte_flow;
  CommandConsole console;

  ConnectionSettings settings;
  std::string settings_problem;  ///< why they could not be saved; told once, not at each connect
  std::string product_variant;
  std::string described;  ///< what the log was told last of where the model's table comes from
  QString error_message;
  QString error_remedy;  ///< of error_message
  QString success_message;
  int monitor_record_duration_s = 60;
  int monitor_record_interval_s = 1;
  int monitor_revision = 0;

  ShownPages pages;
  std::shared_ptr<EditSession> edits;
  /// Until its end has been told. It stands before the session, whose end wakes it.
  std::unique_ptr<OperationLogDownload> operation_log;
  LidarSession session;
  LidarSettings settings_files;
  FirmwareUpgrade upgrade;
  LidarMonitor monitor;

  const std::shared_ptr<LidarModel>& model() const { return session.model(); }
  /// Shows another model. Adds what is wrong with its options to its faults.
  void TakeModel(const std::shared_ptr<LidarModel>& loaded);
  /// Shows the same model with another table for its monitor page. Values, edits and the page in
  /// view stay.
  void TakeMonitorVersion(const std::shared_ptr<LidarModel>& loaded);
  /// The variable whose display field named `field` holds `text`; null if there is none.
  const VarInfo* FindVariable(const QString& field, const QString& text) const;
  Maintenance MaintenanceNow() {
    return Maintenance({session.sender().get(), session.state(), model()->connect_type}, report);
  }
  /// After a command that restarts the lidar, or may have; hands the result on.
  int AfterRestart(int result) {
    if (result == 0 || kavel::lidar::MayBeCarriedOut(result)) {
      session.ReadFactsAfterRestart();
    }
    return result;
  }
};
