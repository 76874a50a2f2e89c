#pragma once

#include <QString>
#include <QTemporaryDir>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "soak/fault_draw.h"
#include "soak/resources.h"
#include "support/manager_bench.h"
#include "variables/var_info.h"

/// Something that has to hold in every round did not.
struct RoundFailed : std::runtime_error {
  using runtime_error::runtime_error;
};

/// What a user does with a lidar, again and again: connecting, reading all pages, editing and
/// saving, a settings file, a command by hand, a restart, disconnecting. The models take turns,
/// each with one virtual lidar that lives as long as this does; what is shown is compared with what
/// that holds.
class Rounds : private ManagerBench {
 public:
  explicit Rounds(unsigned seed);

  /// One round with the model whose turn it is; a round with a fault is followed by another one
  /// with the same lidar. Throws RoundFailed.
  void Run(bool with_fault);

  /// This process, under "Tevron", and the virtual lidars by model: with nothing connected, and
  /// always the same model chosen. Where it is more than `before`, it has a few seconds to become
  /// that again.
  std::map<QString, Resources> AtRest(const std::map<QString, Resources>& before);

  /// Rounds by fault, "none" for those without.
  const std::map<QString, int>& counts() const { return counts_; }
  size_t models() const { return lidars_.size(); }

 private:
  struct Lidar {
    QString model;
    std::unique_ptr<VirtualLidarProcess> process;
  };

  void RunWith(Lidar& lidar);
  void NetworkRound(Lidar& lidar);
  void SerialRound(Lidar& lidar);
  void Strike(Lidar& lidar, uint8_t write_command);
  /// Whether the round goes on behind this step: without a fault it has to.
  bool Goes(bool step, const char* what);

  // Steps. False when the round cannot go on; RoundFailed for what no fault excuses.
  bool ReadsPages();
  bool SavesAPage(const Lidar& lidar, const VarInfo& var);
  bool SavesAFile(const Lidar& lidar);
  bool AnswersByHand(const Lidar& lidar);
  bool ComesBack(const Lidar& lidar);
  bool SpinsAsTold(const Lidar& lidar);

  std::vector<const VarInfo*> Numbers() const;
  void ExpectTruth(const Lidar& lidar, const std::string& but_for) const;
  std::string Scene(const Lidar& lidar) const;

  static constexpr int kPatienceMs = 60000;
  /// Long enough to have asked a lidar that does not come back a few times.
  static constexpr int kPatienceWithAFaultMs = 2500;

  FaultDraw draw_;
  std::vector<Lidar> lidars_;
  size_t turn_ = 0;
  bool strikes_ = false;                   ///< in this round
  std::optional<FaultDraw::Drawn> fault_;  ///< of this round, once it is in force
  std::map<QString, int> counts_;
  const QTemporaryDir folder_;
};
