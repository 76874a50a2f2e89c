#include "faults/trial.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <exception>

#include "faults/operations.h"

namespace {

// An exchange waits this long for silence, for what clears the line, for a header, and for the
// payload behind it, each in turn at the worst. On top of one exchange a call may hold the window
// for a second; between two calls the window answers.
constexpr qint64 kReceiveTimeoutMs = 500;
constexpr qint64 kGrantedMs = 1000;
constexpr qint64 kLongestHoldMs = 4 * kReceiveTimeoutMs + kGrantedMs;

constexpr double kMostMemoryMib = 64;
constexpr int kRecoveryMs = 20000;
constexpr int kValuesMs = 4000;

void Judge(const Bench& bench, const Outcome& outcome, Finding* finding) {
  const Cell& cell = bench.cell();
  const Expected expected = cell.ExpectedOutcome();
  QStringList& faults = finding->faults;
  if (!finding->struck) {
    faults << "the fault did not strike";
  }
  if (outcome.claimed && !outcome.done && QString(cell.fault->name) != "lies") {
    faults << "it claims what was not done";
  }
  if (!outcome.claimed && !outcome.shown && !bench.WasToldOfTrouble()) {
    faults << "it failed without a word";
  }
  if (!outcome.claimed && outcome.done && cell.operation->changes && !bench.WasTold("may have")) {
    faults << "what was done is told as a plain failure";
  }
  if (expected == Expected::kWorks && !outcome.claimed) {
    faults << "it should have worked";
  }
  if (expected == Expected::kFails && outcome.claimed) {
    faults << "it cannot have worked";
  }
}

// Whether the lidar can still be asked what it holds, as the screens find out. Otherwise its values
// are those of their time.
bool IsThere(Bench& bench) {
  TevronManager& manager = bench.manager();
  bench.heart().Enter("checking the link");
  return manager.isConnected() && (!bench.cell().is_network() || manager.CheckLidarConnection());
}

// A value may still be on its way.
void CheckValues(const Bench& bench, bool strictly, Finding* finding) {
  WaitFor([&] { return bench.WrongValues(strictly).isEmpty(); }, kValuesMs);
  for (const QString& wrong : bench.WrongValues(strictly)) {
    finding->faults << wrong;
  }
}

// The fault is over, and the user connects again.
void Recover(Bench& bench, Finding* finding) {
  bench.heart().Enter("");
  bench.Disarm();
  QElapsedTimer taken;
  taken.start();
  bench.heart().Enter("disconnecting");
  // After an upgrade that was cut the tool waits for the lidar by itself.
  if (bench.manager().isConnected() || bench.manager().GetIsConnectingLidar()) {
    bench.manager().Stop();
  }
  bench.heart().Enter("connecting again");
  // A lidar that restarts is not there at once.
  const bool is_back =
      WaitFor([&] { return bench.ConnectNow(); }, kRecoveryMs) && bench.manager().isConnected();
  if (!is_back) {
    finding->faults << "it could not be connected to again";
    return;
  }
  if (bench.cell().is_network()) {
    for (const char* const page : {"Scan", "Diagnostics"}) {
      bench.OpenPage(page);
      if (!bench.IsRead(page)) {
        finding->faults << QString("afterwards, %1 could not be read").arg(page);
      }
    }
  }
  finding->recovery_ms = taken.elapsed();
  CheckValues(bench, true, finding);
}

void JudgeCosts(const Bench& bench, Finding* finding) {
  finding->quiet_ms = bench.quiet_ms();
  finding->gap_ms = bench.heart().longest_ms();
  finding->gap_at = bench.heart().where();
  finding->memory_mib = bench.memory().MostMib();
  const bool is_quick = bench.cell().fault->pace == Pace::kAtOnce;
  if (finding->gap_ms > finding->quiet_ms + (is_quick ? kGrantedMs : kLongestHoldMs)) {
    finding->faults << QString("the window was held for %1 ms").arg(finding->gap_ms);
  }
  if (MemoryWatch::IsMeaningful() && finding->memory_mib > kMostMemoryMib) {
    finding->faults << QString("%1 MiB were taken").arg(finding->memory_mib, 0, 'f', 1);
  }
}

QStringList Texts(const QJsonValue& array) { return array.toVariant().toStringList(); }

}  // namespace

QJsonObject Finding::ToJson() const {
  return {{"outcome", outcome},
          {"told", QJsonArray::fromStringList(told)},
          {"quiet_ms", quiet_ms},
          {"gap_ms", gap_ms},
          {"gap_at", gap_at},
          {"memory_mib", memory_mib},
          {"recovery_ms", recovery_ms},
          {"struck", struck},
          {"scene", scene},
          {"faults", QJsonArray::fromStringList(faults)}};
}

Finding Finding::FromJson(const QJsonObject& json) {
  Finding finding;
  finding.outcome = json["outcome"].toString();
  finding.told = Texts(json["told"]);
  finding.quiet_ms = json["quiet_ms"].toInt();
  finding.gap_ms = json["gap_ms"].toInt();
  finding.gap_at = json["gap_at"].toString();
  finding.memory_mib = json["memory_mib"].toDouble();
  finding.recovery_ms = json["recovery_ms"].toInt();
  finding.struck = json["struck"].toBool();
  finding.scene = json["scene"].toString();
  finding.faults = Texts(json["faults"]);
  return finding;
}

Finding TryCell(const Cell& cell, Bench& bench) {
  Finding finding;
  try {
    bench.Begin(cell);
    const Outcome outcome = cell.operation->perform(bench);
    bench.heart().Go();
    finding.struck = bench.Struck();
    finding.outcome = outcome.claimed ? "done" : outcome.done ? "failed, but done" : "failed";
    finding.told = bench.Told();
    Judge(bench, outcome, &finding);
    CheckValues(bench, cell.operation->changes && IsThere(bench), &finding);
    Recover(bench, &finding);
    bench.heart().Enter("");
    JudgeCosts(bench, &finding);
  } catch (const std::exception& e) {
    finding.faults << e.what();
  }
  finding.scene = finding.faults.isEmpty() ? QString() : bench.Scene();
  return finding;
}
