#include "faults/matrix.h"

#include <QRegularExpression>
#include <algorithm>
#include <iterator>
#include <map>
#include <string>

#include "faults/operations.h"

namespace {

constexpr LinkRow kLinks[] = {
    {"tcp", "Orca", true, false},
    {"tls", "Orca", true, true},
    {"serial", "Lumo-CMX", false, false},
    {"pair", "Lumo", false, false},
};

constexpr OperationRow kOperations[] = {
    {"connect", ConnectToIt, "", "", false, false},
    {"read", Read, "", "", true, false},
    {"save", Save, "@0x12", nullptr, false, true},
    {"settings file", SaveSettingsFile, "", nullptr, true, false},
    {"console", SendByConsole, "@0x11", "@0x4E", true, false},
    {"maintenance", SetSpinRate, nullptr, "@0x47", false, true},
    {"restart", RestartIt, "@0x10", "@0x10", false, true},
    {"upgrade", Upgrade, "@0x83", "@0x51", false, true},
    {"download", Download, "@0xFF", "@0x54", true, false},
    {"operation log", DownloadOperationLog, "@0xFF", nullptr, true, false},
    {"recording", Record, "", nullptr, true, false},
    {"idle", WatchLink, "", "", true, false},
};

constexpr Expected kWorks = Expected::kWorks;
constexpr Expected kFails = Expected::kFails;

// Over the network a frame has no number, and a header that does not begin where a block of bytes
// does may be missed: after some faults the tool cannot but fail, and has to say so.
constexpr FaultRow kFaults[] = {
    {"none", "", Act::kNone, kWorks, kWorks, Pace::kAtOnce},
    {"refused", "", Act::kGone, kFails, kFails, Pace::kAtOnce},
    {"close-before-reply", "close-before-reply", Act::kNone, kFails, kFails, Pace::kAtOnce},
    {"reset", "reset", Act::kNone, kFails, kFails, Pace::kAtOnce},
    {"close-mid-reply", "close-mid-reply", Act::kNone, kFails, kFails, Pace::kAtOnce},
    {"dies", "drop", Act::kDies, kFails, kFails, Pace::kSlow},
    {"drop", "drop", Act::kNone, kFails, kFails, Pace::kSilent},
    {"late", "late=700", Act::kNone, kFails, kFails, Pace::kSlow},
    {"truncate", "truncate", Act::kNone, kFails, kFails, Pace::kSilent},
    {"corrupt", "corrupt", Act::kNone, kFails, kFails, Pace::kSilent},
    {"huge-length", "huge-length", Act::kNone, kFails, kFails, Pace::kSlow},
    {"drip-header", "drip-header=100", Act::kNone, kFails, kFails, Pace::kSilent},
    {"drip", "drip=100", Act::kNone, kFails, kFails, Pace::kSlow},
    {"babble", "babble", Act::kNone, kFails, kFails, Pace::kSilent},
    {"flood", "flood", Act::kNone, kWorks, kWorks, Pace::kSlow},
    {"twice", "twice", Act::kNone, kWorks, kWorks, Pace::kAtOnce},
    {"stale", "stale", Act::kNone, kWorks, kWorks, Pace::kAtOnce},
    {"garbage", "garbage", Act::kNone, kWorks, kWorks, Pace::kAtOnce},
    {"foreign", "foreign", Act::kNone, kWorks, kWorks, Pace::kAtOnce},
    {"unasked", "unasked", Act::kNone, kFails, kWorks, Pace::kAtOnce},
    {"wrong-command", "wrong-command", Act::kNone, kFails, kFails, Pace::kSlow},
    {"return-code", "return-code=9", Act::kNone, kFails, kFails, Pace::kAtOnce},
    {"lies", "return-code=0", Act::kNone, kWorks, kWorks, Pace::kAtOnce},
    {"short", "short", Act::kNone, kWorks, kFails, Pace::kAtOnce},
    {"long", "long", Act::kNone, kWorks, kFails, Pace::kAtOnce},
    {"echo", "echo", Act::kNone, kWorks, kWorks, Pace::kAtOnce},
};

/// The cells that fare otherwise than the row of their fault says.
constexpr struct {
  const char* cells;
  Expected expected;
} kOtherwise[] = {
    // A piece of firmware has its time, and is sent again.
    {"/upgrade/late$", kWorks},
    {"^(serial|pair)/upgrade/drip-header$", Expected::kEither},
    // What asks more than once meets the flood again.
    {"^(tcp|tls)/(read|settings file|operation log|recording|upgrade|idle)/flood$", kFails},
    {"^(serial|pair)/(connect|upgrade)/flood$", kFails},
    {"^(tcp|tls)/(read|settings file)/foreign$", kFails},
    // The copy comes behind the request that follows.
    {"^(tcp|tls)/settings file/twice$", Expected::kEither},
    // Variables are missing from a short answer; a log and what the console shows have any length.
    {"^(tcp|tls)/(read|settings file|recording)/short$", kFails},
    {"^(serial|pair)/console/short$", kWorks},
    {"^(serial|pair)/(console|restart)/long$", kWorks},
};

bool MakesSense(const Cell& cell) {
  const std::string operation = cell.operation->name;
  const std::string fault = cell.fault->name;
  if ((cell.is_network() ? cell.operation->over_network : cell.operation->over_serial) == nullptr) {
    return false;
  }
  if (fault == "none") {
    return true;
  }
  if (fault == "refused") {
    return operation == "connect";
  }
  // Who sends without end does not restart.
  if (operation == "restart" && (fault == "babble" || fault == "flood")) {
    return false;
  }
  // Nothing is asked over a serial line while nobody does anything.
  if (operation == "idle" && !cell.is_network()) {
    return fault == "dies";
  }
  // A piece of firmware has a minute.
  if (operation == "upgrade" && cell.is_network() && cell.fault->pace == Pace::kSilent) {
    return false;
  }
  if (fault == "short" || fault == "drip") {
    return cell.operation->has_payload;
  }
  if (fault == "lies") {  // elsewhere nobody could tell
    return operation == "save";
  }
  // Over the network a request and its answer look alike, and no network echoes.
  return fault != "echo" || !cell.is_network();
}

std::vector<Cell> BuildCells() {
  std::vector<Cell> cells;
  for (const LinkRow& link : kLinks) {
    for (const OperationRow& operation : kOperations) {
      for (const FaultRow& fault : kFaults) {
        if (const Cell cell{&link, &operation, &fault}; MakesSense(cell)) {
          cells.push_back(cell);
        }
      }
    }
  }
  return cells;
}

}  // namespace

QString Cell::Name() const {
  return QString("%1/%2/%3").arg(link->name, operation->name, fault->name);
}

QString Cell::Order() const {
  const char* const struck = is_network() ? operation->over_network : operation->over_serial;
  return *fault->order == '\0' ? QString() : QString(fault->order) + struck;
}

Expected Cell::ExpectedOutcome() const {
  const QString name = Name();
  const auto* const otherwise = std::find_if(
      std::begin(kOtherwise), std::end(kOtherwise),
      [&](const auto& row) { return QRegularExpression(row.cells).match(name).hasMatch(); });
  if (otherwise != std::end(kOtherwise)) {
    return otherwise->expected;
  }
  return is_network() ? fault->over_network : fault->over_serial;
}

const std::vector<Cell>& AllCells() {
  static const std::vector<Cell> cells = BuildCells();
  return cells;
}

std::vector<Cell> ShortForm() {
  // A line that goes, and one that comes back by another name in the middle of an upgrade.
  const QStringList always = {"serial/idle/dies", "serial/upgrade/close-mid-reply"};
  // The slow ones add nothing to a short form.
  const auto is_quick = [](const Cell& cell) {
    const std::string operation = cell.operation->name;
    return operation != "upgrade" && operation != "idle" && operation != "recording";
  };
  std::map<QString, int> used;  // links and operations, so that each gets its turn
  const auto times = [&](const Cell& cell) {
    return used[cell.link->name] + 2 * used[cell.operation->name];
  };
  std::vector<Cell> chosen;
  for (const FaultRow& fault : kFaults) {
    for (const bool network : {true, false}) {
      std::vector<Cell> fitting;
      std::copy_if(AllCells().begin(), AllCells().end(), std::back_inserter(fitting),
                   [&](const Cell& cell) {
                     return cell.fault == &fault && cell.is_network() == network &&
                            !cell.is_quiet() && is_quick(cell);
                   });
      const auto least = std::min_element(
          fitting.begin(), fitting.end(),
          [&](const Cell& one, const Cell& other) { return times(one) < times(other); });
      if (least != fitting.end()) {
        chosen.push_back(*least);
        ++used[least->link->name];
        ++used[least->operation->name];
      }
    }
  }
  std::copy_if(AllCells().begin(), AllCells().end(), std::back_inserter(chosen),
               [&](const Cell& cell) { return always.contains(cell.Name()); });
  return chosen;
}
