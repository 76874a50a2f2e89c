#pragma once

#include <string>
#include <vector>

#include "CmxClient/command_sender.h"
#include "pages/edit_session.h"
#include "pages/fov_table.h"
#include "pages/payload_builder.h"
#include "session/link_state.h"
#include "session/user_report.h"
#include "variables/config_parser.h"
#include "variables/pages.h"

/// Writes the pending changes of one page to the lidar: gathers and converts them, reads the
/// device's present values, and sends one set command after the other. Commands sent before a
/// failure stay applied.
///
/// Runs on the thread that calls it. Everything in `Parts` has to outlive the call.
class PageWriter {
 public:
  struct Parts {
    kavel::lidar::CommandSender* sender;  ///< null without a connection
    ConfigParser& table;
    const PageModel& pages;  ///< of `table`; without pages nothing is done or said
    const LinkState& state;
    PendingCommands& pending;
    FovTable& fov;
    UserReport& report;
  };

  explicit PageWriter(const Parts& parts) : parts_(parts), builder_(parts.table) {}

  /// Writes page `module`; at most once per writer. What happened goes to the report. True when
  /// everything was written, so that the pages have to be shown anew.
  bool Run(int module);

 private:
  bool MayWrite();
  void Gather(int module);
  void ReadPresentValues();
  void SendAll();
  void SendFov();
  void Send(const std::string& set_cmd);
  void Fail(const std::string& set_cmd, const std::string& reason);
  void ReportFailure(const std::string& reason);
  void NameNextAddress();

  const Parts parts_;
  PayloadBuilder builder_;
  std::vector<std::string> send_list_;
  std::vector<const VarInfo*> to_read_;
  std::vector<std::string> applied_;
  // What a failure report names: the command in hand, and whether any was issued.
  std::string command_;
  std::string names_;
  bool command_was_sent_ = false;
};
