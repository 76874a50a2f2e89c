#pragma once

#include <QString>
#include <QVariantList>
#include <functional>
#include <memory>
#include <string>

#include "connection/connect_attempt.h"
#include "connection/connection.h"
#include "connection/connection_settings.h"
#include "console/byte_flow.h"
#include "console/command_console.h"
#include "maintenance/device_facts.h"
#include "maintenance/facts_reading.h"
#include "maintenance/maintenance.h"
#include "pages/edit_session.h"
#include "pages/page_refresh.h"
#include "session/lidar_model.h"
#include "session/link_state.h"
#include "session/posted_report.h"
#include "tevron_manager.h"

/// Shows reports on the manager's own thread, at once.
class ScreenReport : public UserReport {
 public:
  explicit ScreenReport(TevronManager& manager) : manager_(manager) {}
  void Error(const std::string& text) override;
  void Success(const std::string& text) override;
  void LogLine(const std::string& text, LogType type) override;

 private:
  TevronManager& manager_;
};

/// What the manager owns. Members are destroyed from the last to the first, so that the threads at
/// the end are gone before what they report to.
struct TevronManager::Parts {
  Parts(TevronManager& manager, bool auto_receive_flag, const std::string& table_path);
  ~Parts();

  const bool auto_receive;
  const std::string table_folder;

  ScreenReport report;
  /// For what is said on another thread, or before the screens exist.
  const std::shared_ptr<PostedReport> posted;
  const std::shared_ptr<ByteFlowSink> byte_flow;
  CommandConsole console;

  ConnectionSettings settings;
  std::string product_variant;
  LinkState state;
  std::shared_ptr<LidarModel> model;
  std::shared_ptr<EditSession> edits;
  int page_in_use = 0;

  QString error_message;
  QString success_message;
  QVariantList my_map;
  QVariantList page_names;
  QVariantList page_rows;
  QVariantList fov_texts;
  DeviceFacts facts;
  bool reading_facts = false;
  bool monitor_auto_refresh = false;
  int monitor_record_duration_s = 60;
  int monitor_record_interval_s = 1;

  bool connecting = false;
  int attempt_number = 0;  ///< results that carry another number are ignored
  std::shared_ptr<Connection> connection;
  std::unique_ptr<PageRefresh> refresh;
  std::unique_ptr<FactsReading> facts_reading;
  std::unique_ptr<ConnectAttempt> attempt;

  /// Where commands go; null without a connection.
  std::shared_ptr<kavel::lidar::CommandSender> sender() const;
  /// The variable whose display field named `field` holds `text`; null if there is none.
  const VarInfo* FindVariable(const QString& field, const QString& text) const;
  /// Whether page `module` may be read now.
  bool MayReadPage(int module) const;

  Maintenance MaintenanceNow() {
    return Maintenance({sender().get(), state, model->connect_type}, report);
  }

  /// Read anew what a serial-attached lidar says about itself, after a command that may have
  /// changed it. Over the network, where the pages show everything, they do nothing.
  void ReadFactsAgain();
  void ReadFactsAfterRestart();

  /// The serial or part number: that of a network model is its variable `name`, any other's was
  /// asked for after connecting.
  QString IdentityText(const char* name, const std::string& asked) const;

  /// Shows another model. Adds what is wrong with its options to its faults.
  void TakeModel(std::shared_ptr<LidarModel> loaded);
  /// Shows the values as they are now; true when anything changed.
  bool RebuildMap();
  /// The same for the one variable at a position that exists: what an edit changes.
  void ShowValueAt(const VarInfo& var, int level1, int level2, int level3);
  /// Shows the field-of-view table as it is now; true when a text changed.
  bool RebuildFov();
  PageRefresh::View ViewInUse() const { return {model, page_in_use}; }

  /// Ends attempt, refresh and connection, in any state.
  void EndConnection();
};
