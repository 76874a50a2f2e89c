#pragma once

#include <QString>
#include <vector>

/// The table of the fault matrix: which operation is tried over which link with which fault, and
/// what has to come of it. Everything here is data; what an operation is, is in operations.h.

class Bench;
struct Outcome;

struct LinkRow {
  const char* name;
  const char* model;
  bool is_network;
  bool is_tls;
};

struct OperationRow {
  const char* name;
  Outcome (*perform)(Bench&);  ///< as in operations.h
  /// Which requests the fault strikes, as behind a fault's name, over the network and over a serial
  /// line; "" for all, null where there is no such operation.
  const char* over_network;
  const char* over_serial;
  bool has_payload;  ///< the answers that the fault strikes carry more than a return code
  bool changes;      ///< it changes what the lidar is or holds
};

/// What has to come of an operation. In every case what it claims to have done is done, and what it
/// has not done, or may not have done, the user is told.
enum class Expected {
  kWorks,
  kFails,
  kEither,  ///< whether it works is a matter of the machine's pace
};

/// What the trial does to the lidar's process itself.
enum class Act {
  kNone,
  kGone,  ///< ended before the operation begins
  kDies,  ///< ended in the middle of it, and started again before the next connection
};

/// What a fault makes the tool wait for.
enum class Pace {
  kAtOnce,  ///< every request is answered at once, rightly or wrongly, or the link ends
  kSlow,    ///< something is waited for
  kSilent,  ///< no request finds an answer: each time-out is waited out
};

struct FaultRow {
  const char* name;
  const char* order;  ///< as for --fault, without the requests that it strikes; "" for none
  Act act;
  Expected over_network;
  Expected over_serial;
  Pace pace;
};

struct Cell {
  const LinkRow* link;
  const OperationRow* operation;
  const FaultRow* fault;

  /// "tcp/save/drop"
  QString Name() const;
  /// As for --fault; "" for none.
  QString Order() const;
  Expected ExpectedOutcome() const;
  bool is_network() const { return link->is_network; }
  bool is_quiet() const { return *fault->order == '\0' && fault->act == Act::kNone; }
};

/// Every combination that makes sense, in the order of the table.
const std::vector<Cell>& AllCells();
/// Each fault over a network and a serial line, with links and operations in turn, and a few more.
std::vector<Cell> ShortForm();
