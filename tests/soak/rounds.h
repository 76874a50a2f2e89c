#pragma once

#include <QRegularExpression>
#include <QString>
#include <map>
#include <random>
#include <stdexcept>
#include <vector>

#include "faults/bench.h"
#include "soak/resources.h"

/// Something that has to hold in every round did not.
struct RoundFailed : std::runtime_error {
  using runtime_error::runtime_error;
};

/// Cells of the fault matrix, again and again, with one manager and one virtual lidar for each link
/// that live as long as this does.
class Rounds {
 public:
  /// The cells whose names match `wanted`, but for those that upgrade a lidar or end its process.
  /// Throws RoundFailed without any; the same seed has the same order.
  Rounds(unsigned seed, const QRegularExpression& wanted);

  /// Tries a cell; of those with a fault, and of those without one, each comes once before any
  /// comes again. Throws RoundFailed.
  void Run(bool with_fault);
  /// Whether every cell without a fault had its turn.
  bool HasTriedAll() const { return has_tried_all_; }

  /// This process, under "Tevron", and the virtual lidars by link: with nothing connected, and
  /// always the same model chosen. Where it is more than `before`, it has a few seconds to become
  /// that again.
  std::map<QString, Resources> AtRest(const std::map<QString, Resources>& before) const;

  /// Rounds by fault, "none" for those without.
  const std::map<QString, int>& counts() const { return counts_; }

 private:
  struct Deck {
    std::vector<Cell> all;
    std::vector<Cell> left;
  };

  std::mt19937 random_;
  Deck quiet_;
  Deck faulty_;
  bool has_tried_all_ = false;
  Bench bench_;
  std::map<QString, int> counts_;
};
