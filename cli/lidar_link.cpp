#include "lidar_link.h"

#include <algorithm>
#include <utility>

#include "Platform/ipv4_text.h"
#include "connection/connection.h"
#include "failure.h"
#include "names.h"
#include "output.h"
#include "pages/page_reader.h"
#include "variables/host_port.h"
#include "variables/monitor_tables.h"

namespace {

using Clock = TaskQueue::Clock;

constexpr std::chrono::milliseconds kTick{100};
constexpr std::chrono::milliseconds kPauseBetweenTries{500};
/// No page has this number: the session reads none by itself.
constexpr int kNoPage = -1;

std::chrono::milliseconds Milliseconds(double seconds) {
  return std::chrono::milliseconds(static_cast<int64_t>(seconds * 1000));
}

std::string HowReached(ConnectType connect_type) {
  switch (connect_type) {
    case kSerialPair:
      return "over a pair of serial ports; give --serial RS485_PORT,UART_PORT";
    case kSerialCmx:
      return "over one serial line; give --serial PORT";
    default:
      return "over the network; give --host ADDRESS[:PORT]";
  }
}

std::shared_ptr<ByteFlow> MakeByteFlow(const Context& context) {
  auto flow = std::make_shared<ByteFlow>(context.report);
  flow->SetOn(context.arguments.verbose);
  return flow;
}

/// No further try would end otherwise.
Failure Untrusted(const UntrustedLidar& untrusted, const std::string& reason) {
  const kavel::lidar::TlsCertificate& certificate = untrusted.lidar.certificate;
  const std::string advice = untrusted.verdict == CertificateVerdict::kUnknown
                                 ? " When that is the lidar's own, give --tls-pin " +
                                       certificate.sha256 + ", or trust it in the window"
                                 : "";
  return Failure(ExitCode::kNoConnection, reason + advice)
      .With({{"certificate", CertificateObject(certificate)}});
}

Failure WrongPlace(const LidarModel& model) {
  return {ExitCode::kUsage, model.name + " is reached " + HowReached(model.connect_type)};
}

}  // namespace

std::vector<std::string> InstalledModels(const Context& context) {
  std::vector<std::string> models = context.config.Models();
  if (models.empty()) {
    throw Failure(ExitCode::kUsage, "there are no tables in " + context.config.path() +
                                        "/varID; name their folder with --config");
  }
  return models;
}

std::shared_ptr<LidarModel> LoadNamedModel(const Context& context) {
  const std::vector<std::string> models = InstalledModels(context);
  if (context.arguments.model.empty()) {
    throw Failure(ExitCode::kUsage, "give the model with --model; \"tevronctl models\" lists them");
  }
  const std::string& name = models[MatchName(models, context.arguments.model, "model")];
  std::shared_ptr<LidarModel> model = LoadLidarModel(context.config, name);
  for (const TableFault& fault : model->faults) {
    context.report.LogLine(fault.text, LogType::kInfo);
  }
  if (model->table->InTableOrder().empty()) {
    throw Failure(ExitCode::kUsage,
                  "no variables could be loaded for the model " + name + ": " +
                      (model->faults.empty() ? "its table is empty" : model->faults.front().text));
  }
  return model;
}

QJsonObject CertificateObject(const kavel::lidar::TlsCertificate& certificate) {
  return {{"sha256", QString::fromStdString(certificate.sha256)},
          {"subject", QString::fromStdString(certificate.subject)},
          {"valid_from", TextOrNull(certificate.valid_from)},
          {"valid_until", TextOrNull(certificate.valid_until)}};
}

LidarLink::LidarLink(Context& context)
    : context_(context),
      session_({queue_.MakePost(),
                context.report,
                true,
                MakeByteFlow(context),
                {[] {}, [] {}, [] {}, [] {}, [] {}, [] {}}}) {
  const std::shared_ptr<LidarModel> model = LoadNamedModel(context);
  TakePlace(*model);
  TakeHostPort(*model);
  TakePin(*model);
  session_.SetModel(model);
  session_.SetPageInView(kNoPage);
  WakeWhenInterrupted();
}

LidarLink::~LidarLink() {
  context_.interrupt.SetAction({});
  session_.Close();
}

void LidarLink::TakePlace(const LidarModel& model) {
  const Arguments& arguments = context_.arguments;
  if (model.connect_type != kNetworkLink) {
    return TakeSerialPorts(model);
  }
  if (arguments.host.empty()) {
    throw WrongPlace(model);
  }
  const size_t colon = arguments.host.find(':');
  settings_.lidar_ip = arguments.host.substr(0, colon);
  if (colon != std::string::npos) {
    settings_.command_port = arguments.host.substr(colon + 1);
  }
  uint8_t octets[4];
  uint16_t port = 0;
  if (!kavel::lidar::ParseDottedIpv4(settings_.lidar_ip, octets) ||
      !ParsePort(settings_.command_port, &port)) {
    throw Failure(ExitCode::kUsage,
                  "--host: \"" + arguments.host +
                      "\" is no address like 192.168.1.201 or 192.168.1.201:9347");
  }
}

void LidarLink::TakeSerialPorts(const LidarModel& model) {
  const Arguments& arguments = context_.arguments;
  const size_t comma = arguments.serial.find(',');
  const bool is_pair = model.connect_type == kSerialPair;
  settings_.serial_port_485 = arguments.serial.substr(0, comma);
  settings_.serial_port_232 = comma == std::string::npos ? "" : arguments.serial.substr(comma + 1);
  if (settings_.serial_port_485.empty() || is_pair == settings_.serial_port_232.empty()) {
    throw WrongPlace(model);
  }
  if (arguments.baud != 0) {
    (is_pair ? settings_.point_cloud_baud_rate_bps : settings_.command_baud_rate_bps) =
        arguments.baud;
  }
}

// As in the window: the port last used with this model, unless another one is given.
void LidarLink::TakeHostPort(const LidarModel& model) {
  const std::string& given = context_.arguments.host_port;
  if (!given.empty() && !model.host_port_enabled) {
    throw Failure(ExitCode::kUsage, "--host-port: the tables offer no host port for " + model.name);
  }
  settings_.host_port =
      given.empty() ? LoadHostPort(SettingsFilePath(), model.name).value_or("ANY") : given;
  std::string error;
  uint16_t port = 0;
  if (model.host_port_enabled && !ParseHostPort(settings_.host_port, &port, &error)) {
    throw Failure(ExitCode::kUsage, "--host-port: " + error);
  }
}

void LidarLink::TakePin(const LidarModel& model) {
  const std::optional<std::string>& given = context_.arguments.tls_pin;
  if (!given) {
    return;
  }
  if (model.link != NetworkLink::kTls) {
    throw Failure(ExitCode::kUsage, "--tls-pin: " + model.name + " is not reached over TLS");
  }
  settings_.tls_pin = kavel::lidar::NormalSha256(*given);
  if (settings_.tls_pin.empty()) {
    throw Failure(ExitCode::kUsage, "--tls-pin: \"" + *given +
                                        "\" is no SHA-256, which is 64 hexadecimal digits, with or "
                                        "without colons");
  }
}

void LidarLink::WakeWhenInterrupted() {
  context_.interrupt.SetAction([post = queue_.MakePost()] { post([] {}); });
}

LidarLink::Interruptible::Interruptible(LidarLink& link) : link_(link) {
  link.context_.interrupt.SetAction(
      [post = link.queue_.MakePost(), connection = link.session_.connection()] {
        connection->Close();
        post([] {});
      });
}

void LidarLink::Wait(const std::function<bool()>& done, const std::function<void()>& tick) {
  const auto is_over = [&] { return context_.interrupt.raised() || done(); };
  const bool ticks = tick && context_.report.shows_progress();
  while (!queue_.RunUntil(is_over, ticks ? Clock::now() + kTick : Clock::time_point::max())) {
    tick();
  }
  context_.report.EndProgress();
  context_.interrupt.ThrowIfRaised();
}

void LidarLink::SleepUntil(Clock::time_point time) {
  queue_.RunUntil([this] { return context_.interrupt.raised(); }, time);
  context_.interrupt.ThrowIfRaised();
}

void LidarLink::Connect() {
  const auto& limit = context_.arguments.timeout_s;
  const Clock::time_point deadline =
      limit ? Clock::now() + Milliseconds(*limit) : Clock::time_point::max();
  while (!TryOnce(deadline)) {
    const LinkSnapshot link = session_.LinkNow();
    const std::string& reason = link.failure;
    const std::string said = context_.report.TakeError("it did not answer in time");
    if (link.untrusted) {
      throw Untrusted(*link.untrusted, reason);
    }
    if (!limit || Clock::now() + kPauseBetweenTries >= deadline) {
      throw Failure(ExitCode::kNoConnection,
                    "no connection to " + Address() + ": " + (reason.empty() ? said : reason));
    }
    SleepUntil(Clock::now() + kPauseBetweenTries);
  }
}

bool LidarLink::TryOnce(Clock::time_point deadline) {
  context_.report.TakeError("");
  session_.Connect(settings_);
  const auto is_over = [this] {
    return context_.interrupt.raised() || !(session_.connecting() || session_.reading_facts());
  };
  const bool is_in_time = queue_.RunUntil(is_over, deadline);
  context_.interrupt.ThrowIfRaised();
  // Nothing was asked over a pair of ports before it counts as connected.
  const bool is_there = is_in_time && session_.state().connected &&
                        (model()->connect_type != kSerialPair || session_.CheckLink());
  if (!is_there && (session_.connecting() || session_.state().connected)) {
    session_.Stop();
  }
  return is_there;
}

void LidarLink::NeedPages(const std::string& command) const {
  if (model()->connect_type != kNetworkLink) {
    throw Failure(ExitCode::kUsage, "the settings of " + model()->name +
                                        " are read and made in the window alone, so that \"" +
                                        command + "\" can do nothing with it");
  }
}

void LidarLink::TakeMonitorVersion() {
  const VarInfo* const block = MonitorBlockOf(*model()->table);
  if (block == nullptr) {
    return;
  }
  PageReader reader(sender(), *model()->table, session_.state(), session_.read_failures(),
                    context_.report);
  if (!reader.GetInfoFromLidar(*block)) {
    return;
  }
  const std::string version = model()->table->ValueOf(*block).text;
  const std::vector<std::string> versions = ListMonitorVersions(model()->config, model()->name);
  TableFaults faults;
  const bool is_described = std::find(versions.begin(), versions.end(), version) != versions.end();
  const auto loaded = is_described ? WithMonitorVersion(*model(), version, &faults) : nullptr;
  if (loaded == nullptr) {
    context_.report.LogLine("no monitor table describes the hardware version \"" + version + "\"",
                            LogType::kWarning);
    return;
  }
  session_.SetModel(loaded);
  session_.SetPageInView(kNoPage);
}

kavel::lidar::CommandSender& LidarLink::sender() const {
  const std::shared_ptr<kavel::lidar::CommandSender> sender = session_.sender();
  if (sender == nullptr) {
    throw FailureOf(kavel::lidar::kNotConnected);
  }
  return *sender;
}

RestartPatience LidarLink::patience() const {
  RestartPatience patience;
  if (context_.arguments.timeout_s) {
    patience.returns = Milliseconds(*context_.arguments.timeout_s);
  }
  return patience;
}

double LidarLink::AwaitReturn() {
  const Clock::time_point begin = Clock::now();
  std::optional<LidarSession::Return> outcome;
  session_.AwaitReturn(patience(), [&outcome](LidarSession::Return how) { outcome = how; });
  Wait([&] { return outcome.has_value() && !session_.reading_facts(); });
  const std::chrono::duration<double> taken = Clock::now() - begin;
  if (outcome != LidarSession::Return::kBack) {
    const std::string reason = session_.LinkNow().failure;
    throw Failure(ExitCode::kBrokenOff, "the lidar took the command and did not come back within " +
                                            std::to_string(patience().returns.count() / 1000) +
                                            " s" + (reason.empty() ? "" : ": " + reason));
  }
  return taken.count();
}

std::string LidarLink::Address() const {
  switch (model()->connect_type) {
    case kSerialPair:
      return settings_.serial_port_485 + ',' + settings_.serial_port_232;
    case kSerialCmx:
      return settings_.serial_port_485;
    default:
      return settings_.lidar_ip + ':' + settings_.command_port;
  }
}
