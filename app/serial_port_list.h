#pragma once

#include <QObject>
#include <QVariantList>

/// The serial ports of this computer, for the port pickers. The list is made when asked for; a port
/// is described from what the system knows about it and is not opened. GUI thread only.
class SerialPortList : public QObject {
  Q_OBJECT
  /// One map a port, by device: "device" ("/dev/ttyUSB0"), "description", "adapter" (maker and USB
  /// identifiers; empty for a port that is no adapter) and "label", one line made of the three.
  Q_PROPERTY(QVariantList ports READ ports NOTIFY portsChanged)

 public:
  using QObject::QObject;

  const QVariantList& ports() const { return ports_; }

  /// Lists the ports anew.
  Q_INVOKABLE void Refresh();

  /// The line that describes one port in a list.
  static QString Label(const QString& device, const QString& description, const QString& adapter);

 signals:
  void portsChanged();

 private:
  QVariantList ports_;
};
