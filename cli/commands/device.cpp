// Commands of one exchange: what is typed by hand, restart, reset.

#include <QString>
#include <algorithm>
#include <optional>

#include "CmxClient/hex_text.h"
#include "commands/commands.h"
#include "lidar_settings.h"
#include "variables/command_code.h"
#include "variables/number_text.h"

namespace {

using kavel::lidar::HexText;

/// Hexadecimal digits in pairs, "0x" allowed before them.
std::vector<uint8_t> BytesOf(const std::string& text, const char* what) {
  const QByteArray digits =
      QByteArray::fromStdString(std::string(WithoutHexPrefix(text))).rightJustified(2, '0');
  const QByteArray bytes = QByteArray::fromHex(digits);
  if (bytes.isEmpty() || bytes.toHex() != digits.toLower()) {
    throw Failure(ExitCode::kUsage,
                  std::string(what) + " \"" + text + "\" is no hexadecimal byte like 2a or 0x2a");
  }
  return {bytes.begin(), bytes.end()};
}

/// One byte is a command; more of them are a long one, as in the tables.
WireCommand CommandOf(const Arguments& arguments) {
  const std::vector<uint8_t> code = BytesOf(arguments.name, "the command");
  WireCommand command{kLongCommandCode, code};
  if (code.size() == 1) {
    command = {code.front(), {}};
  }
  for (const std::string& text : arguments.names) {
    const std::vector<uint8_t> bytes = BytesOf(text, "the payload");
    command.payload.insert(command.payload.end(), bytes.begin(), bytes.end());
  }
  return command;
}

/// Waits for the lidar unless that is not wanted, and tells how it went.
ExitCode Conclude(Context& context, LidarLink& link, const std::string& done) {
  QJsonObject result{{"accepted", true}, {"back", QJsonValue()}, {"seconds", QJsonValue()}};
  if (context.arguments.no_wait) {
    context.output.Line(done);
    context.output.Object(result);
    return ExitCode::kDone;
  }
  context.report.Note(done + " Waiting for it to answer again.");
  try {
    const double seconds = link.AwaitReturn();
    result["back"] = true;
    result["seconds"] = seconds;
    context.output.Line(done + " It answers again after " +
                        QString::number(seconds, 'f', 1).toStdString() + " s.");
  } catch (Failure& failure) {
    result["back"] = false;
    throw std::move(failure).With(result);
  }
  context.output.Object(result);
  return ExitCode::kDone;
}

}  // namespace

ExitCode RunSend(Context& context) {
  const WireCommand command = CommandOf(context.arguments);
  LidarLink link(context);
  link.Connect();
  std::vector<uint8_t> reply;
  int32_t reason = 0;
  const int32_t sent =
      link.sender().QueryCommand(command.payload, reply, command.code, false, &reason);
  const bool is_refused = sent != 0 && reason > 0;
  if (sent != 0 && !is_refused) {
    throw FailureOf(reason);
  }
  const QJsonObject result{{"return_code", reason}, {"payload", HexText(reply).c_str()}};
  if (is_refused) {
    throw FailureOf(reason).With(result);
  }
  context.output.Line(HexText(reply));
  context.output.Object(result);
  return ExitCode::kDone;
}

ExitCode RunRestart(Context& context) {
  LidarLink link(context);
  link.Connect();
  std::string why;
  if (const int32_t reason = link.maintenance().Restart(*link.model()->table, &why); reason != 0) {
    throw Failure(FailureOf(reason).code(), "the lidar does not restart: " + why,
                  FailureOf(reason).lidar_code());
  }
  return Conclude(context, link, "The lidar restarts.");
}

ExitCode RunReset(Context& context) {
  if (!context.arguments.yes) {
    throw Failure(ExitCode::kUsage,
                  "reset puts every setting back to the factory's; say --yes if you want that");
  }
  LidarLink link(context);
  link.Connect();
  KeepSnapshot(context, link, SnapshotReason::kReset);
  if (const int32_t reason = link.maintenance().Reset(*link.model()->table); reason != 0) {
    throw Failure(FailureOf(reason).code(), context.report.TakeError("the lidar was not reset"),
                  FailureOf(reason).lidar_code());
  }
  return Conclude(context, link, "The lidar is reset.");
}
