#pragma once

#include <QFile>
#include <QObject>
#include <QTemporaryDir>
#include <QUrl>
#include <QVariant>
#include <QVariantList>

#include "plot/plot_data.h"

/// Stands in for the manager where a screen is tested alone. It holds what a test puts into its
/// properties, and notes every call as [name, arguments...] in `calls`.
class FakeManager : public QObject {
  Q_OBJECT
  Q_PROPERTY(QVariantList calls MEMBER calls NOTIFY noted)
  Q_PROPERTY(QVariantList myMap MEMBER map NOTIFY noted)
  Q_PROPERTY(QVariantList level2List MEMBER rows NOTIFY lidarModelChanged)
  Q_PROPERTY(QVariantList FovList MEMBER fov NOTIFY fovConfigChanged)
  Q_PROPERTY(bool IsConnected MEMBER connected NOTIFY isConnectedChanged)
  Q_PROPERTY(bool IsUpgrading MEMBER upgrading NOTIFY isUpgradingChanged)
  Q_PROPERTY(bool IsDownloadLog MEMBER downloading NOTIFY isDownloadLogChanged)
  Q_PROPERTY(int connectType MEMBER connect_type NOTIFY connectTypeChanged)
  Q_PROPERTY(QVariantList monitorHwVersionList MEMBER versions NOTIFY noted)
  Q_PROPERTY(QString currentMonitorHwVersion MEMBER version NOTIFY noted)
  Q_PROPERTY(bool monitorAutoRefresh MEMBER auto_refresh NOTIFY noted)
  Q_PROPERTY(int monitorRecordDurationSec MEMBER duration_s NOTIFY noted)
  Q_PROPERTY(int monitorRecordIntervalSec MEMBER interval_s NOTIFY noted)
  Q_PROPERTY(bool isMonitorRecording MEMBER recording NOTIFY noted)
  // What the methods below answer, and the angles that a reading brings.
  Q_PROPERTY(QString pn MEMBER pn NOTIFY noted)
  Q_PROPERTY(QString sn MEMBER sn NOTIFY noted)
  Q_PROPERTY(bool alive MEMBER alive NOTIFY noted)
  Q_PROPERTY(QVariantList heldAngles MEMBER held_angles NOTIFY noted)

 public:
  using QObject::QObject;

  Q_INVOKABLE bool ConnectLidar() { return Note({"ConnectLidar"}); }
  Q_INVOKABLE void Stop() { Note({"Stop"}); }
  Q_INVOKABLE bool CheckLidarConnection() { return Note({"CheckLidarConnection"}) && alive; }
  Q_INVOKABLE bool GetIsConnectingLidar() { return false; }
  Q_INVOKABLE void GetLidarModuleInfo(int module) {
    Note({"GetLidarModuleInfo", module});
    fov = held_angles;
    emit fovConfigChanged();
    emit myMapChanged();
  }
  Q_INVOKABLE void Run(int module) { Note({"Run", module}); }
  Q_INVOKABLE void SetText(int type, int level1, int level2, int level3, const QString& text) {
    ++pending;
    Note({"SetText", type, level1, level2, level3, text});
  }
  Q_INVOKABLE void SetMultiFovConfig(int index, const QString& text) {
    ++pending;
    fov[index] = text;
    Note({"SetMultiFovConfig", index, text});
    emit fovConfigChanged();
  }
  Q_INVOKABLE int getSetMapSize() { return pending; }
  Q_INVOKABLE bool CheckModuleVarsWithinRange(int module) {
    return Note({"CheckModuleVarsWithinRange", module});
  }
  Q_INVOKABLE QString getLidarPN() { return pn; }
  Q_INVOKABLE QString getLidarSN() { return sn; }
  Q_INVOKABLE void selectMonitorHwVersion(const QString& name) {
    Note({"selectMonitorHwVersion", name});
  }
  Q_INVOKABLE void refreshMonitor() { Note({"refreshMonitor"}); }
  Q_INVOKABLE void stopMonitorRecord() { Note({"stopMonitorRecord"}); }
  /// Puts readings of three values, one of them with long numbers, into the PlotData `data`.
  Q_INVOKABLE static void Measure(QObject* data) {
    auto* plot = qobject_cast<PlotData*>(data);
    plot->Restart({{"Controller Temperature", "°C"}, {"Points Sent", ""}, {"Supply", "V"}});
    for (int i = 0; i < 20; ++i) {
      plot->Append(int64_t{1000} * i, {{46.2 + i}, {4294967200.0 + i}, {kNothingRead}});
    }
    plot->Announce();
  }
  Q_INVOKABLE void setErrorMsg(const QString& text) { Note({"setErrorMsg", text}); }
  /// The URL of a file of so many bytes in a folder of the manager's own; -1: no such file.
  Q_INVOKABLE QUrl MakeFile(const QString& name, int bytes) {
    QFile file(folder.filePath(name));
    file.remove();
    if (bytes >= 0 && file.open(QIODevice::WriteOnly)) {
      file.resize(bytes);
    }
    return QUrl::fromLocalFile(file.fileName());
  }
  Q_INVOKABLE bool UpgradeLidar(const QUrl& url, int level1, int level2, int level3) {
    return Note({"UpgradeLidar", url, level1, level2, level3});
  }

 signals:
  void noted();
  void myMapChanged();
  void myTimerMapChanged();
  void lidarModelChanged();
  void fovConfigChanged();
  void isConnectedChanged();
  void isUpgradingChanged();
  void isDownloadLogChanged();
  void connectTypeChanged();
  void monitorContentChanged();
  void someVarOutOfRange(const QString& var_name);

 private:
  bool Note(const QVariantList& call) {
    calls.append(QVariant(call));
    emit noted();
    return true;
  }

  QTemporaryDir folder;
  QVariantList calls;
  QVariantList map;
  QVariantList rows;
  QVariantList fov;
  bool connected = true;
  bool upgrading = false;
  bool downloading = false;
  int connect_type = 0;
  QVariantList versions = {"A1", "B2"};
  QString version = "A1";
  bool auto_refresh = false;
  int duration_s = 60;
  int interval_s = 1;
  bool recording = false;
  QString pn;
  QString sn;
  bool alive = true;
  QVariantList held_angles;
  int pending = 0;
};
