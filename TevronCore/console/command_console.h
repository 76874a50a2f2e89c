#pragma once

#include <QString>
#include <QVariantList>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "CmxClient/command_sender.h"
#include "session/link_state.h"
#include "session/user_report.h"

/// The console where a user types a command and its payload by hand and sees the reply's bytes.
/// GUI thread only; Send returns after one exchange.
class CommandConsole {
 public:
  /// Which kind of link the messages speak of.
  enum class Family { kCmx, kSerial };

  /// What is left to do for the caller.
  struct Outcome {
    bool attempted =
        false;            ///< the texts were looked at: returned texts and history may have changed
    std::string success;  ///< "" or what the lidar now does; refresh the page, then show it
  };

  static constexpr size_t kHistorySize = 10;
  /// Most bytes of a reply that are shown, its header included.
  static constexpr size_t kDisplayLimit = 1024;

  explicit CommandConsole(UserReport& report) : report_(report) {}

  /// Sends `command` (one hexadecimal number, its low byte counts) with `payload` (hexadecimal
  /// numbers separated by blanks, the low byte of each counts). "0x" is allowed before each. Does
  /// nothing while the lidar may not be asked or `sender` is null or closed. A text that cannot be
  /// read is reported and nothing is sent; a reply that the lidar refused is shown like any other.
  Outcome Send(kavel::lidar::CommandSender* sender, const LinkState& state, Family family,
               const QString& command, const QString& payload);

  /// The last reply's 8 header bytes as hexadecimal text; empty when there was none.
  QString ReturnHeader() const { return QString::fromStdString(return_header_); }
  /// What followed the header, as far as it is shown.
  QString ReturnPayload() const { return QString::fromStdString(return_payload_); }

  /// The last answered commands, newest first, at most kHistorySize: maps of texts under
  /// "record_time" (local), "send_cmd_history" and "send_payload_history" (as typed).
  QVariantList History() const;

 private:
  struct Entry {
    std::string time;
    QString command;
    QString payload;
  };

  void ShowReply(const std::vector<uint8_t>& reply);
  void Remember(const QString& command, const QString& payload);

  UserReport& report_;
  std::string return_header_;
  std::string return_payload_;
  std::deque<Entry> history_;
};
