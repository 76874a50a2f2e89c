#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "CmxClient/command_sender.h"
#include "pages/command_writer.h"
#include "pages/edit_session.h"
#include "pages/fov_table.h"
#include "pages/page_reader.h"
#include "pages/payload_builder.h"
#include "pages/read_failures.h"
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
    ReadFailures& failures;
    UserReport& report;
  };

  enum class Outcome {
    kNothing,   ///< nothing was to be done, or nothing may be written now
    kWritten,   ///< everything was accepted
    kFailed,    ///< what came before the failure stays applied
    kNoAnswer,  ///< failed because the lidar said nothing
  };

  explicit PageWriter(const Parts& parts) : parts_(parts), builder_(parts.table) {}

  /// Writes page `module`; at most once per writer. What happened goes to the report.
  Outcome Run(int module);

  /// The network settings that Run sent were taken: where the lidar is reached after its restart;
  /// else empty.
  std::string next_address() const { return writer_ ? writer_->next_address() : std::string(); }

 private:
  bool MayWrite();
  void Gather(int module);
  void ReadPresentValues();
  void WarnOfOldValues(const std::string& set_cmd);
  void SendAll();
  void SendFov(const std::string& set_cmd);
  void Send(const std::string& set_cmd);
  void Fail(const std::string& set_cmd, const std::string& reason, int32_t error);
  void ReportFailure(const std::string& reason);
  std::string ChangedNames(const std::string& set_cmd) const;

  const Parts parts_;
  PayloadBuilder builder_;
  std::optional<CommandWriter> writer_;  ///< once something may be written
  std::vector<std::string> send_list_;
  std::vector<const VarInfo*> to_read_;
  Unread unread_;
  std::vector<std::string> applied_;
  // What a failure report names: the command in hand, and whether any was issued.
  std::string command_;
  std::string names_;
  bool command_was_sent_ = false;
  std::string remedy_;  ///< "" where there is none
};
