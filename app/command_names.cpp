#include "command_names.h"

#include <QMap>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "CmxClient/device_commands.h"
#include "Wire/file_piece.h"
#include "variables/command_code.h"

namespace {

constexpr int kNamedVariables = 4;

// The variables of a command, page for page.
using Pages = QMap<QString, QStringList>;

QString Described(const QString& verb, const Pages& pages) {
  QStringList parts;
  for (auto page = pages.begin(); page != pages.end(); ++page) {
    const int more = page->size() - kNamedVariables;
    QString names = QStringList(page->mid(0, kNamedVariables)).join(", ");
    if (more > 0) {
      names = CommandNames::tr("%1 and %2 more").arg(names).arg(more);
    }
    parts += page.key() + ": " + names;
  }
  return verb + ' ' + parts.join("; ");
}

QByteArray KeyOf(uint8_t code) { return QByteArray(1, static_cast<char>(code)); }

void Note(const QVariantMap& leaf, const char* column, QMap<QByteArray, Pages>* commands) {
  const std::string command = leaf[column].toString().toStdString();
  if (command.empty()) {
    return;
  }
  try {
    const WireCommand wire = WireCommandOf(command);
    const QByteArray key =
        KeyOf(wire.code) + QByteArray(reinterpret_cast<const char*>(wire.payload.data()),
                                      static_cast<int>(wire.payload.size()));
    QStringList& names = (*commands)[key][leaf["page"].toString()];
    if (const QString name = leaf["var_name"].toString(); !names.contains(name)) {
      names += name;
    }
  } catch (const std::logic_error&) {
    // No command: the table's loading has reported it.
    return;
  }
}

QHash<uint8_t, QString> BuiltIn() {
  using namespace kavel::lidar;
  return {{kCmdLiveness, CommandNames::tr("asks whether the lidar is there")},
          {kCmdLivenessOld, CommandNames::tr("asks whether the lidar is there, older form")},
          {kCmdRestart, CommandNames::tr("restarts the lidar")},
          {kCmdFactoryReset, CommandNames::tr("resets the lidar to its factory settings")},
          {kCmdFirmwarePiece, CommandNames::tr("takes a piece of firmware")},
          {kLongCommandCode,
           CommandNames::tr("a long command, whose bytes stand at the head of the payload")}};
}

// Those that serial-attached lidars know besides, which have no variables.
QHash<uint8_t, QString> BuiltInOfSerial() {
  using namespace kavel::lidar;
  return {{kCmdGetBaudRate, CommandNames::tr("reads the baud rate")},
          {kCmdSetBaudRate, CommandNames::tr("writes the baud rate")},
          {kCmdGetDestination, CommandNames::tr("reads where the points are sent")},
          {kCmdSetDestination, CommandNames::tr("writes where the points are sent")},
          {kCmdGetNet, CommandNames::tr("reads the network settings")},
          {kCmdSetNet, CommandNames::tr("writes the network settings")},
          {kCmdSetReturnMode, CommandNames::tr("writes the return mode")},
          {kCmdSetSpinRate, CommandNames::tr("writes the spin rate")},
          {kCmdSetStandby, CommandNames::tr("writes standby")},
          {kCmdSetImuRange, CommandNames::tr("writes the ranges of the IMU")},
          {kCmdGetPblVersion, CommandNames::tr("reads the PBL version")},
          {kCmdGetSerialNumber, CommandNames::tr("reads the serial number")},
          {kCmdGetPartNumber, CommandNames::tr("reads the part number")},
          {kCmdGetVersions, CommandNames::tr("reads the versions")},
          {kCmdGetFunctionSafety, CommandNames::tr("reads the function safety")},
          {kCmdGetStatus, CommandNames::tr("reads the status")},
          {kCmdGetPartition, CommandNames::tr("reads the partition")},
          {kCmdGetCalibration, CommandNames::tr("reads the calibration")}};
}

}  // namespace

void CommandNames::SetManager(QObject* manager) {
  if (manager_ != nullptr) {
    manager_->disconnect(this);
  }
  manager_ = manager;
  if (manager_ != nullptr) {
    connect(manager_, SIGNAL(lidarModelChanged()), this, SLOT(Read()));
  }
  Read();
}

QString CommandNames::Of(const QString& command, const QString& payload) const {
  bool is_number = false;
  QByteArray key = KeyOf(static_cast<uint8_t>(command.trimmed().toUInt(&is_number, 16)));
  if (!is_number) {
    return {};
  }
  for (const QString& number : payload.split(' ', Qt::SkipEmptyParts)) {
    key += static_cast<char>(number.toUInt(nullptr, 16));
  }
  // A long command may begin like another one.
  for (key.truncate(longest_); key.size() > 1 && !names_.contains(key);) {
    key.chop(1);
  }
  return names_.value(key);
}

void CommandNames::Read() {
  QMap<QByteArray, Pages> reads;
  QMap<QByteArray, Pages> writes;
  const QVariantList pages =
      manager_ == nullptr ? QVariantList() : manager_->property("myMap").toList();
  for (const QVariant& page : pages) {
    for (const QVariant& group : page.toList()) {
      for (const QVariant& leaf : group.toList()) {
        Note(leaf.toMap(), "get_cmd", &reads);
        Note(leaf.toMap(), "set_cmd", &writes);
      }
    }
  }
  names_.clear();
  for (auto command = reads.begin(); command != reads.end(); ++command) {
    names_[command.key()] = Described(tr("reads"), *command);
  }
  for (auto command = writes.begin(); command != writes.end(); ++command) {
    names_[command.key()] = Described(tr("writes"), *command);
  }
  QHash<uint8_t, QString> built_in = BuiltIn();
  if (manager_ != nullptr && manager_->property("connectType").toInt() != 0) {
    built_in.insert(BuiltInOfSerial());
  }
  for (auto command = built_in.begin(); command != built_in.end(); ++command) {
    names_[KeyOf(command.key())] = *command;
  }
  longest_ = 1;
  for (auto name = names_.keyBegin(); name != names_.keyEnd(); ++name) {
    longest_ = std::max(longest_, name->size());
  }
  emit changed();
}
