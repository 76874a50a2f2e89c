#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "support/child_process.h"

/// The virtual lidar as a process of its own, on a port of the system's choice and with the tables
/// under "./Config". It is ended with the object.
class VirtualLidarProcess {
 public:
  /// Starts it and waits until it is ready. `arguments` as on its command line, "--port", "--dump"
  /// and "--fault-file" excepted. Throws std::runtime_error with what it said when it does not
  /// become ready.
  explicit VirtualLidarProcess(const QStringList& arguments = {}, quint16 port = 0);

  /// Has it write a firmware file for `model`, with images of `kib` KiB.
  static void MakeFirmware(const QString& model, const QString& version, const QString& file,
                           int kib);

  /// Has it make the files that TLS needs, in `folder`: see its --tls-make.
  static void MakeTlsFiles(const QString& folder);

  /// The TCP port on 127.0.0.1.
  quint16 port() const { return port_; }
  /// The serial line, or the one of the pair that is called `kind` ("485" or "232"): the one made
  /// last, where the one before has gone.
  QString SerialPort(const QString& kind = "485") const;

  qint64 id() const { return process_.id(); }
  /// Everything printed so far.
  QString Output() const { return process_.Output(); }
  /// The same, from now on; where it can be reached stays in it.
  void Forget() { process_.Forget(QRegularExpression("^(serial port|listening on) ")); }
  /// All that it holds, as its --dump tells it.
  QJsonObject State() const;
  /// What it holds for the variable `name`, as its "text" or "hex"; empty when it has none.
  QString Held(const QString& name, const QString& form = "text") const;

  /// From now on these faults, besides those that it was started with; throws std::runtime_error
  /// with what it said when it does not take them.
  void SetFaults(const QStringList& faults);
  /// Ends it at once, as a lidar that loses its power.
  void Kill() { process_.Kill(); }
  /// Makes it fall silent for good, with its links left open.
  void Freeze() { process_.Signal(SIGSTOP); }

 private:
  void WriteFaults(const QStringList& faults);

  QTemporaryDir folder_;
  mutable ChildProcess process_;  ///< collects what was printed whenever it is asked
  quint16 port_ = 0;
};
