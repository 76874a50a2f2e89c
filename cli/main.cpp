#include <QCoreApplication>
#include <QTextCodec>
#include <exception>
#include <iostream>
#include <ostream>

#include "auth/auth_config.h"
#include "commands/commands.h"

namespace {

/// Takes standard output away from whatever else writes to it: the rooms tell of their progress
/// there, and what a script reads has to hold results alone.
class ResultStream : public std::ostream {
 public:
  ResultStream() : std::ostream(std::cout.rdbuf()) {}
  ~ResultStream() override { std::cout.rdbuf(rdbuf()); }
  void Claim(bool verbose) { std::cout.rdbuf(verbose ? std::cerr.rdbuf() : nullptr); }
};

void DropMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/,
                 const QString& /*text*/) {}

void TellFailure(const Failure& failure, Output& output, ConsoleReport& report) {
  report.ShowErrors();
  report.Fatal(failure.what());
  QJsonObject object = failure.result();
  object["error"] = QJsonObject{
      {"code", static_cast<int>(failure.code())},
      {"message", failure.what()},
      {"lidar_code", failure.lidar_code() ? QJsonValue(*failure.lidar_code()) : QJsonValue()}};
  output.Object(object);
}

ExitCode RunGuarded(Context& context) {
  try {
    return FindCommand(context.arguments.command)(context);
  } catch (const Failure&) {
    throw;
  } catch (const AuthConfigError& error) {
    throw Failure(ExitCode::kUsage, error.text());
  } catch (const std::exception& error) {
    throw Failure(ExitCode::kUsage, error.what());
  }
}

ExitCode Run(const Arguments& arguments, Output& output) {
  using Loudness = ConsoleReport::Loudness;
  ConsoleReport report(arguments.quiet     ? Loudness::kQuiet
                       : arguments.verbose ? Loudness::kVerbose
                                           : Loudness::kNormal);
  Interrupt interrupt;
  Context context{
      arguments, output, report, interrupt,
      arguments.config.empty() ? ConfigFolder::OfProgram() : ConfigFolder(arguments.config)};
  try {
    const ExitCode code = RunGuarded(context);
    if (!output.good()) {
      throw Failure(ExitCode::kBrokenOff, "the results could not be written to standard output");
    }
    report.ShowErrors();
    return code;
  } catch (const Failure& failure) {
    report.EndProgress();
    TellFailure(failure, output, report);
    return failure.code();
  }
}

}  // namespace

// No application object: nothing here has an event loop, and texts stay in the C locale.
int main(int argc, char** argv) {
  QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
  // What is kept for the user lies where the window keeps it.
  QCoreApplication::setOrganizationName(QStringLiteral("KavelTech"));
  QCoreApplication::setApplicationName(QStringLiteral("tevron"));
  QCoreApplication::setApplicationVersion(QStringLiteral(TEVRON_VERSION));
  ResultStream results;
  try {
    int exit_code = 0;
    const std::optional<Arguments> arguments = ParseArguments(argc, argv, &exit_code);
    if (!arguments) {
      return exit_code;
    }
    if (!arguments->verbose) {
      qInstallMessageHandler(DropMessage);
    }
    results.Claim(arguments->verbose);
    Output output(results, arguments->json);
    return static_cast<int>(Run(*arguments, output));
  } catch (const Failure& failure) {
    Output output(results, WantsJson(argc, argv));
    ConsoleReport report(ConsoleReport::Loudness::kNormal);
    TellFailure(failure, output, report);
    return static_cast<int>(failure.code());
  }
}
