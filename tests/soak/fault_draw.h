#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <random>
#include <vector>

/// Draws the faults of a run: every one comes once before any comes again. The same seed draws the
/// same.
class FaultDraw {
 public:
  /// What a round is given.
  struct Drawn {
    QString name;
    QString order;      ///< as --fault takes it
    bool lies = false;  ///< the lidar claims what it did not do; no client can know
  };

  explicit FaultDraw(unsigned seed) : random_(seed) {}

  /// Where the fault is to strike.
  struct Target {
    uint8_t write_command = 0;   ///< of the round; the fault strikes that, a few requests, or all
    bool has_handshake = false;  ///< else no fault of one comes
    bool is_serial = false;      ///< else nothing echoes: it would have the form of an answer
  };
  Drawn Next(const Target& target);

  /// A number from `least` to `most`.
  int Number(int least, int most);

 private:
  QString Scope(uint8_t write_command);

  std::mt19937 random_;
  std::vector<size_t> left_;  ///< places in FaultModes()
};
