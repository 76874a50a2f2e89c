#pragma once

#include <QRegularExpression>
#include <QSettings>
#include <QStringList>
#include <memory>
#include <stdexcept>

#include "connection/connection_settings.h"
#include "support/qt_wait_for.h"
#include "support/test_install.h"
#include "support/virtual_lidar_process.h"
#include "tevron_manager.h"

/// A manager over a throw-away install root and settings file, and what it has told the screens.
class ManagerBench {
 protected:
  ManagerBench() {
    QSettings(SettingsFilePath(), QSettings::IniFormat).clear();
    Recreate();
  }

  /// A manager as after a new start of the program.
  void Recreate() {
    manager_.reset();
    manager_ = std::make_unique<TevronManager>(true, "./Config/varID/Orca.csv");
    manager_->InitConfigFileParser();
    Listen();
  }

  void PointAt(uint16_t port) {
    manager_->setIpAddress("127.0.0.1");
    manager_->setPort(QString::number(port));
  }
  bool Connect() {
    return manager_->ConnectLidar() &&
           WaitFor([this] { return !manager_->GetIsConnectingLidar(); }) && manager_->isConnected();
  }
  bool ConnectTo(const VirtualLidarProcess& lidar) {
    PointAt(lidar.port());
    return Connect();
  }

  /// A row of the lists that the screens use; its place on the pages is in the cells 2 to 4.
  QVariantList Find(const QString& name) const {
    for (const QVariant& page : manager_->level2List()) {
      for (const QVariant& row : page.toList()) {
        if (Leaf(row.toList()).value("var_name").toString() == name) {
          return row.toList();
        }
      }
    }
    throw std::runtime_error("no row " + name.toStdString());
  }
  QVariantMap Leaf(const QVariantList& row) const {
    const QVariantList page = manager_->myMap()[row[2].toInt()].toList();
    return page[row[3].toInt()].toList()[row[4].toInt()].toMap();
  }
  QString Text(const QString& name) const {
    return Leaf(Find(name)).value("current_val").toString();
  }
  bool Edited(const QString& name) const { return Leaf(Find(name)).value("edited").toBool(); }
  /// Edits a text field, as the screens do.
  void Edit(const QString& name, const QString& text) {
    const QVariantList row = Find(name);
    manager_->SetText(1, row[2].toInt(), row[3].toInt(), row[4].toInt(), text);
  }
  void OpenPage(const QString& name) {
    const int page = manager_->level1List().indexOf(name);
    manager_->ClearSetMap();
    manager_->setModuleIndexUse(page);
    manager_->GetLidarModuleInfo(page);
  }
  /// Saves the page, as the screens do.
  void Save(const QString& name) {
    const int page = manager_->level1List().indexOf(name);
    manager_->Run(page);
    manager_->GetLidarModuleInfo(page);
  }

  QStringList TakeErrors() { return std::exchange(errors_, {}); }
  /// The log lines so far that begin with `beginning`, which contains the type: "INFO: ...".
  QStringList LogLines(const QString& beginning) const {
    return log_.filter(QRegularExpression('^' + QRegularExpression::escape(beginning)));
  }

  TestInstall install_;
  QStringList log_;
  QStringList errors_;
  QStringList remedies_;  ///< of every error so far, "" where there is none
  QStringList successes_;
  std::unique_ptr<TevronManager> manager_;

 private:
  void Listen() {
    TevronManager* manager = manager_.get();
    QObject::connect(
        manager, &TevronManager::sendLogMessage,
        [this](const QString& msg, const QString& type) { log_ << type + ": " + msg; });
    // The screens clear a message once they have shown it.
    QObject::connect(manager, &TevronManager::errorMessageChanged, [this, manager] {
      errors_ << manager->errorMessage();
      remedies_ << manager->ErrorRemedy();
      manager->setErrorMsg("");
    });
    QObject::connect(manager, &TevronManager::successMessageChanged, [this, manager] {
      successes_ << manager->successMessage();
      manager->setSuccessMsg("");
    });
  }
};
