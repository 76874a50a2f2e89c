#include "serial_port_list.h"

#include <QSerialPortInfo>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>

namespace {

QString Adapter(const QSerialPortInfo& port) {
  QStringList parts;
  if (!port.manufacturer().isEmpty()) {
    parts << port.manufacturer();
  }
  if (port.hasVendorIdentifier() && port.hasProductIdentifier()) {
    parts << QStringLiteral("%1:%2")
                 .arg(port.vendorIdentifier(), 4, 16, QLatin1Char('0'))
                 .arg(port.productIdentifier(), 4, 16, QLatin1Char('0'));
  }
  return parts.join(QLatin1Char(' '));
}

}  // namespace

void SerialPortList::Refresh() {
  QList<QSerialPortInfo> found = QSerialPortInfo::availablePorts();
  std::sort(found.begin(), found.end(), [](const QSerialPortInfo& a, const QSerialPortInfo& b) {
    return a.systemLocation() < b.systemLocation();
  });
  ports_.clear();
  for (const QSerialPortInfo& port : found) {
    const QString device = port.systemLocation();
    const QString adapter = Adapter(port);
    ports_ << QVariantMap{{QStringLiteral("device"), device},
                          {QStringLiteral("description"), port.description()},
                          {QStringLiteral("adapter"), adapter},
                          {QStringLiteral("label"), Label(device, port.description(), adapter)}};
  }
  emit portsChanged();
}

QString SerialPortList::Label(const QString& device, const QString& description,
                              const QString& adapter) {
  QStringList parts{device, description, adapter};
  parts.removeAll(QString());
  return parts.join(QStringLiteral(" · "));
}
