#include "faults/matrix.h"

#include <QRegularExpression>
#include <algorithm>
#include <iterator>
#include <map>
#include <string>

namespace {

constexpr LinkRow kLinks[] = {
    {Link::kTcp, "tcp", "Orca"},
    {Link::kTls, "tls", "Orca"},
    {Link::kSerialCmx, "serial", "Lumo-CMX"},
    {Link::kSerialPair, "pair", "Lumo"},
};

constexpr OperationRow kOperations[] = {
    {Operation::kConnect, "connect", "", "", false, false},
    {Operation::kRead, "read", "", "", true, false},
    {Operation::kSave, "save", "@0x12", nullptr, false, true},
    {Operation::kConsole, "console", "@0x11", "@0x4E", true, false},
    {Operation::kMaintenance, "maintenance", nullptr, "@0x47", false, true},
    {Operation::kRestart, "restart", "@0x10", "@0x10", false, true},
    {Operation::kUpgrade, "upgrade", "@0x83", "@0x51", false, true},
    {Operation::kDownload, "download", "@0xFF", "@0x54", true, false},
    {Operation::kOperationLog, "operation log", "@0xFF", nullptr, true, false},
    {Operation::kRecording, "recording", "", nullptr, true, false},
    {Operation::kIdle, "idle", "", "", true, false},
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
    {"^(tcp|tls)/(read|operation log|recording|upgrade|idle)/flood$", kFails},
    {"^(serial|pair)/(connect|upgrade)/flood$", kFails},
    {"^(tcp|tls)/read/foreign$", kFails},
    // Variables are missing from a short answer; a log and what the console shows have any length.
    {"^(tcp|tls)/(read|recording)/short$", kFails},
    {"^(serial|pair)/console/short$", kWorks},
    {"^(serial|pair)/(console|restart)/long$", kWorks},
};

bool MakesSense(const Cell& cell) {
  const OperationRow& operation = *cell.operation;
  const std::string fault = cell.fault->name;
  if ((cell.is_network() ? operation.over_network : operation.over_serial) == nullptr) {
    return false;
  }
  if (fault == "none") {
    return true;
  }
  if (fault == "refused") {
    return operation.operation == Operation::kConnect;
  }
  // Who sends without end does not restart.
  if (operation.operation == Operation::kRestart && (fault == "babble" || fault == "flood")) {
    return false;
  }
  // Nothing is asked over a serial line while nobody does anything.
  if (operation.operation == Operation::kIdle && !cell.is_network()) {
    return fault == "dies";
  }
  // A piece of firmware has a minute.
  if (operation.operation == Operation::kUpgrade && cell.is_network() &&
      cell.fault->pace == Pace::kSilent) {
    return false;
  }
  if (fault == "short" || fault == "drip") {
    return operation.has_payload;
  }
  if (fault == "lies") {  // elsewhere nobody could tell
    return operation.operation == Operation::kSave;
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
  // The slow ones add nothing to a short form.
  const auto is_quick = [](const Cell& cell) {
    const Operation operation = cell.operation->operation;
    return operation != Operation::kUpgrade && operation != Operation::kIdle &&
           operation != Operation::kRecording;
  };
  std::map<QString, int> used;  // links and operations, so that each gets its turn
  std::vector<Cell> chosen;
  for (const FaultRow& fault : kFaults) {
    const Cell* least = nullptr;
    int least_used = 0;
    for (const Cell& cell : AllCells()) {
      const int times = used[cell.link->name] + 2 * used[cell.operation->name];
      if (cell.fault == &fault && is_quick(cell) && (least == nullptr || times < least_used)) {
        least = &cell;
        least_used = times;
      }
    }
    if (least != nullptr && !least->is_quiet()) {
      chosen.push_back(*least);
      ++used[least->link->name];
      ++used[least->operation->name];
    }
  }
  return chosen;
}
