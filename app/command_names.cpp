#include "command_names.h"

#include <QMap>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
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

void Note(const QVariantMap& leaf, const char* key, QMap<uint8_t, Pages>* commands) {
  const std::string command = leaf[key].toString().toStdString();
  // Long commands share one code and stand at the head of the payload.
  if (command.empty() || command.size() >= kLongCommandTextLength) {
    return;
  }
  try {
    QStringList& names = (*commands)[WireCommandOf(command).code][leaf["page"].toString()];
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

QString CommandNames::Of(const QString& command) const {
  bool is_number = false;
  const uint number = command.trimmed().toUInt(&is_number, 16);
  return is_number ? names_.value(static_cast<uint8_t>(number)) : QString();
}

void CommandNames::Read() {
  QMap<uint8_t, Pages> reads;
  QMap<uint8_t, Pages> writes;
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
    names_[command.key()] = *command;
  }
  emit changed();
}
