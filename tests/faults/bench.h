#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <atomic>
#include <memory>
#include <thread>

#include "faults/matrix.h"
#include "faults/memory_watch.h"
#include "support/heart.h"
#include "support/manager_bench.h"

/// One virtual lidar and the manager that uses it, with what the user was told and how the window
/// fared meanwhile. One a process.
class Bench : public ManagerBench {
 public:
  /// Starts both, the lidar without its fault.
  explicit Bench(const Cell& cell);
  ~Bench();

  const Cell& cell() const { return cell_; }
  TevronManager& manager() { return *manager_; }
  VirtualLidarProcess& lidar() { return *lidar_; }
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

  /// A folder that is empty at first.
  QString Folder(const QString& name) const;
  const QString& firmware() const { return firmware_; }

 private:
  QStringList WrongVariables(const QJsonObject& now, const QJsonObject& before) const;
  QStringList WrongFacts(const QJsonObject& now, const QJsonObject& before) const;
  QStringList Arguments() const;
  void MakeFirmware();
  void MakeTls();

  const Cell cell_;
  QTemporaryDir folders_;
  QString firmware_;
  QStringList tls_;  ///< the lidar's certificate and key, where it speaks TLS
  std::unique_ptr<VirtualLidarProcess> lidar_;
  QJsonObject held_before_;
  int output_before_ = 0;  ///< characters
  std::atomic<bool> is_ended_{false};
  std::thread killer_;
  MemoryWatch memory_;
  Heart heart_;
  qint64 quiet_ms_ = 0;
};
