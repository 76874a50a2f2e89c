#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <thread>

#include "faults/matrix.h"
#include "faults/memory_watch.h"
#include "support/heart.h"
#include "support/manager_bench.h"

/// A manager and the virtual lidars that it uses, one for each link, with what the user was told
/// and how the window fared meanwhile. One a process.
class Bench : public ManagerBench {
 public:
  ~Bench();

  /// Takes up a cell, with nothing connected: its model is chosen, and the lidar of its link is
  /// there without a fault.
  void Begin(const Cell& cell);

  const Cell& cell() const { return *cell_; }
  TevronManager& manager() { return *manager_; }
  VirtualLidarProcess& lidar() const { return *lidars_.at(cell_->link); }
  /// All that were started, by their links.
  const std::map<const LinkRow*, std::unique_ptr<VirtualLidarProcess>>& lidars() const {
    return lidars_;
  }
  Heart& heart() { return heart_; }
  const Heart& heart() const { return heart_; }
  /// The longest gap until Arm.
  qint64 quiet_ms() const { return quiet_ms_; }
  /// Since Arm.
  const MemoryWatch& memory() const { return memory_; }

  /// Connects to where the lidar is now, and waits for what a serial one says about itself.
  bool ConnectNow();
  /// The fault from here on. What was told until then is forgotten, and what held the window is
  /// what the rest is measured by.
  void Arm();
  /// No fault any more; a lidar that was ended is back.
  void Disarm();
  /// Whether the fault has struck, by the lidar's own word or by what was done to its process.
  bool Struck() const;

  using ManagerBench::Edit;
  using ManagerBench::OpenPage;
  /// Everything told since Arm, in words: "error: ...", "success: ...", "WARNING: ...".
  QStringList Told() const;
  bool WasTold(const QString& piece) const;
  bool WasToldOfTrouble() const;
  /// Whether every value of the page is one that the lidar told since connecting.
  bool IsRead(const QString& page) const;
  /// Values shown as the lidar's that are not what it holds now, nor, unless `strictly`, what it
  /// held when it was armed; "name: shown, held".
  QStringList WrongValues(bool strictly) const;

  /// Ends the connection, chooses always the same model, and forgets what was told.
  void Rest();
  /// The log, and the end of what the lidar printed.
  QString Scene() const;
  /// What the lidar has printed since Arm.
  QString Printed() const { return lidar().Output().mid(output_before_); }
  /// An empty folder.
  QString Folder(const QString& name) const;
  const QString& firmware() const { return firmware_; }

 private:
  QStringList WrongVariables(const QJsonObject& now, const QJsonObject& before) const;
  QStringList WrongFacts(const QJsonObject& now, const QJsonObject& before) const;
  QStringList Arguments() const;
  void MakeTls();
  void Forget();

  std::optional<Cell> cell_;
  QTemporaryDir folders_;
  QString firmware_;
  std::map<const LinkRow*, std::unique_ptr<VirtualLidarProcess>> lidars_;
  QJsonObject held_before_;
  int output_before_ = 0;  ///< characters
  std::atomic<bool> is_ended_{false};
  std::thread killer_;
  MemoryWatch memory_;
  Heart heart_;
  qint64 quiet_ms_ = 0;
};
