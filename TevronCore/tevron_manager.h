#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantList>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "connection/link_snapshot.h"
#include "connection/uart_arrivals.h"
#include "downloads/download_status.h"
#include "session/on_own_thread.h"
#include "upgrade/upgrade_status.h"
#include "variables/table_fault.h"

class LidarSettings;
class MonitorFeed;
struct LidarModel;
enum class OperationLogOutcome;

/// The one object behind all screens. It owns the parts that do the work (settings, variable table,
/// connection, page refresh), starts them, and turns what they report into properties and signals;
/// it decides nothing about a lidar itself.
///
/// Lives on the GUI thread: every member is called there, every signal is emitted there. Exchanges
/// that a screen waits for (reading a page, writing it, the link check) run before the call
/// returns; connecting and the periodic refresh run on threads that the manager owns and ends.
///
/// The order of signals, invokable methods and properties below is an interface of its own: screens
/// and tools address them by index. Argument names are part of it too, and arguments without a name
/// have none on purpose.
class TevronManager : public QObject {
  Q_OBJECT

  Q_PROPERTY(QVariantList myMap READ myMap NOTIFY myMapChanged)
  Q_PROPERTY(QString ip_address READ ipAddress WRITE setIpAddress NOTIFY initInfoChanged)
  Q_PROPERTY(QString udpPort READ udpPort WRITE setUdpPort NOTIFY initInfoChanged)
  Q_PROPERTY(QString port READ port WRITE setPort NOTIFY initInfoChanged)
  Q_PROPERTY(
      QString serial_port_485 READ serialPort485 WRITE setSerialPort485 NOTIFY initInfoChanged)
  Q_PROPERTY(
      QString serial_port_232 READ serialPort232 WRITE setSerialPort232 NOTIFY initInfoChanged)
  Q_PROPERTY(QString baud_rate READ baudRate WRITE setBaudRate NOTIFY initInfoChanged)
  Q_PROPERTY(
      bool enableCmxClientHostPortUi READ enableCmxClientHostPortUi NOTIFY featureConfigChanged)
  Q_PROPERTY(QString cmxClientHostPort READ cmxClientHostPort WRITE setCmxClientHostPort NOTIFY
                 initInfoChanged)
  Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
  Q_PROPERTY(QString successMessage READ successMessage NOTIFY successMessageChanged)
  Q_PROPERTY(QString SendCmxCommandReturnHeader READ getSendCmxCommandReturnHeader NOTIFY
                 sendCommandHistoryChanged)
  Q_PROPERTY(QString SendCmxCommandReturnPayload READ getSendCmxCommandReturnPayload NOTIFY
                 sendCommandHistoryChanged)
  Q_PROPERTY(int CommandLogCnt READ commandLogCnt NOTIFY sendCommandHistoryChanged)
  Q_PROPERTY(
      QVariantList SendCommandHistory READ sendCommandHistory NOTIFY sendCommandHistoryChanged)
  Q_PROPERTY(bool IsConnected READ isConnected NOTIFY isConnectedChanged)
  Q_PROPERTY(QVariantList FovList READ fovList NOTIFY fovConfigChanged)
  Q_PROPERTY(bool IsUpgrading READ isUpgrading NOTIFY isUpgradingChanged)
  Q_PROPERTY(
      bool IsDownloadLog READ isDownloadLog WRITE setIsDownloadLog NOTIFY isDownloadLogChanged)
  Q_PROPERTY(QVariantList LidarModelList READ lidarModelList NOTIFY lidarModelListChanged)
  // The upgrade screen reads these two on its own timer, so they announce nothing.
  Q_PROPERTY(int upgradeProgress READ upgradeProgress)
  Q_PROPERTY(int upgradeProgressTotalLen READ upgradeProgressTotalLen)
  Q_PROPERTY(int connectType READ connectType NOTIFY connectTypeChanged)
  Q_PROPERTY(QVariantList level1List READ level1List NOTIFY lidarModelChanged)
  Q_PROPERTY(QVariantList level2List READ level2List NOTIFY lidarModelChanged)
  Q_PROPERTY(QVariantList LumoLidarInfo READ lumoLidarInfo NOTIFY lumoLidarInfoChanged)
  Q_PROPERTY(
      QVariantList LumoLidarVersionInfo READ lumoLidarVersionInfo NOTIFY lumoLidarInfoChanged)
  Q_PROPERTY(bool isGetPBLVersion READ isGetPBLVersion NOTIFY isGetPBLVersionChanged)
  Q_PROPERTY(QVariantList logRepeaterModel READ logRepeaterModel NOTIFY lidarModelChanged)
  Q_PROPERTY(QVariantList monitorHwVersionList READ monitorHwVersionList NOTIFY
                 monitorHwVersionListChanged)
  Q_PROPERTY(QString currentMonitorHwVersion READ currentMonitorHwVersion NOTIFY
                 currentMonitorHwVersionChanged)
  Q_PROPERTY(bool monitorAutoRefresh READ monitorAutoRefresh WRITE setMonitorAutoRefresh NOTIFY
                 monitorAutoRefreshChanged)
  Q_PROPERTY(int monitorRecordDurationSec READ monitorRecordDurationSec WRITE
                 setMonitorRecordDurationSec NOTIFY monitorRecordParamsChanged)
  Q_PROPERTY(int monitorRecordIntervalSec READ monitorRecordIntervalSec WRITE
                 setMonitorRecordIntervalSec NOTIFY monitorRecordParamsChanged)
  Q_PROPERTY(bool isMonitorRecording READ isMonitorRecording NOTIFY isMonitorRecordingChanged)
  Q_PROPERTY(int monitorModuleIndex READ monitorModuleIndex NOTIFY lidarModelChanged)
  Q_PROPERTY(int monitorContentRevision READ monitorContentRevision NOTIFY monitorContentChanged)

 public:
  /// The process-wide manager, created on the first call; later calls ignore their arguments. A
  /// second, concurrent first call waits and gets the same object. The caller deletes it.
  static TevronManager* Instance(bool flag, const std::string& table_path);

  /// `flag` is the auto-receive flag handed to the network client. `table_path` names the variable
  /// table of the first model, "./Config/varID/Orca.csv": it says in which folder all tables are
  /// looked for, those of the site and the user included, see ConfigFolder::Of. None is loaded
  /// until InitConfigFileParser. Takes the last-used connection settings from the settings file.
  TevronManager(bool flag, const std::string& table_path);
  /// Ends every thread of the manager, at most 1.5 s later whatever the lidar does.
  ~TevronManager() override;
  TevronManager(const TevronManager&) = delete;
  TevronManager& operator=(const TevronManager&) = delete;

  /// Selects the model that the command line asks for. An empty name or one without a table changes
  /// nothing; otherwise the model is loaded, becomes the fixed one of getPVNowName(), and
  /// lidarModelListChanged is emitted.
  void SetModulePV(const QString& model_name);

  /// How it stands with the connection.
  LinkSnapshot LinkNow() const;
  /// Ends the connection to a lidar that restarts and connects again as soon as it answers, for a
  /// minute at most; where it has taken another address, there. Stop ends the wait.
  void AwaitLidar();
  /// The same for a lidar that is at this address from now on, which becomes the one that is set.
  void AwaitLidarAt(const std::string& address);

  /// The upgrade that runs, or the last one.
  UpgradeSnapshot UpgradeNow() const;
  /// The firmware that the connected lidar runs, as far as it was read; "" while it is unknown.
  std::string RunningVersion() const;
  /// The download of the operation log that runs; none otherwise.
  DownloadSnapshot DownloadNow() const;
  /// Ends it soon: downloadOperationLogFinished(false), without an error.
  void CancelDownload();
  /// Whether this model is upgraded by a package of components (KivaUpgradeLidar), and not by one
  /// image.
  bool TakesPackages() const;
  /// The chosen model as loaded; never null.
  std::shared_ptr<const LidarModel> Model() const;
  /// Tells an error as setErrorMsg does, with what the user can do about it.
  void ShowError(const QString& text, const QString& remedy);
  /// What the user can do about errorMessage(), where its cause is known; else empty.
  const QString& ErrorRemedy() const;
  /// What arrives on the UART; none unless a lidar is connected by a pair of serial ports.
  std::optional<UartArrivals> UartNow() const;

 signals:
  void isConnectedChanged();
  void lidarModelChanged();
  void lidarClearModel();
  void lidarShowModel();
  void myMapChanged();
  void fovConfigChanged();
  void isUpgradingChanged();
  void sendCommandHistoryChanged();
  void errorMessageChanged();
  void successMessageChanged();
  void isDownloadLogChanged();
  void lidarModelListChanged();
  void isResetAllSettingsVisibleChanged();
  void sendLogMessage(const QString& msg, const QString& type);
  void downloadFinished();
  void downloadOperationLogFinished(bool result);
  void someVarOutOfRange(const QString& var_name);
  void connectTypeChanged();
  void lumoLidarInfoChanged();
  void isGetPBLVersionChanged();
  void initInfoChanged();
  void featureConfigChanged();
  void myTimerMapChanged();
  void monitorHwVersionListChanged();
  void currentMonitorHwVersionChanged();
  void monitorAutoRefreshChanged();
  void monitorRecordParamsChanged();
  void isMonitorRecordingChanged();
  void monitorContentChanged();

 public:
  Q_INVOKABLE void InitConfigFileParser(const QString& model_name = "Orca");
  Q_INVOKABLE bool ConnectLidar();
  Q_INVOKABLE bool CheckLidarConnection();
  Q_INVOKABLE void Run(int module);
  Q_INVOKABLE void Stop();
  Q_INVOKABLE void SetText(int type, int level1, int level2, int level3, const QString& text);
  Q_INVOKABLE void ClearSetMap();
  Q_INVOKABLE int getSetMapSize();
  Q_INVOKABLE void StartGetConfigFile();
  Q_INVOKABLE void SendCommand(const QString& cmd_qs, const QString& payload_qs);
  Q_INVOKABLE QString getSendCmxCommandReturnHeader();
  Q_INVOKABLE QString getSendCmxCommandReturnPayload();
  Q_INVOKABLE int Restart();
  Q_INVOKABLE int Reset();
  Q_INVOKABLE int UpgradeLidar(const QUrl& fileUrl, int, int, int);
  Q_INVOKABLE int LumoUpgradeLidar(const QUrl& fileUrl);
  Q_INVOKABLE int KivaUpgradeLidar(const QUrl& fileUrl);
  Q_INVOKABLE int DownloadOperationLog(const QUrl& fileUrl);
  Q_INVOKABLE int DownloadOperationLogThread(const QUrl& fileUrl);
  Q_INVOKABLE int DownloadLog(const QUrl& fileUrl, const QString& type);
  Q_INVOKABLE void GetLidarModuleInfo(int module);
  Q_INVOKABLE bool UpdateSingleVarInfo(const QString& qs_var_info,
                                       const QString& search_type = "var_name");
  Q_INVOKABLE bool CheckVarIsWithinRange(const QString& qs_var_info,
                                         const QString& search_type = "var_name");
  Q_INVOKABLE bool CheckModuleVarsWithinRange(int module);
  Q_INVOKABLE void SetMultiFovConfig(int index, const QString& fov);
  Q_INVOKABLE void UpdateUI();
  Q_INVOKABLE void setErrorMsg(const QString& str);
  Q_INVOKABLE void setSuccessMsg(const QString& str);
  Q_INVOKABLE void SetLogBytesFlowStatus(bool flag);
  Q_INVOKABLE bool GetIsConnectingLidar();
  Q_INVOKABLE bool CheckVarExistsInConfigFileByName(const QString& qs_var_info);
  Q_INVOKABLE QString getLidarSN();
  Q_INVOKABLE QString getLidarPN();
  Q_INVOKABLE void setModuleIndexUse(int);
  Q_INVOKABLE void selectMonitorHwVersion(const QString& version);
  Q_INVOKABLE void refreshMonitor();
  Q_INVOKABLE void startMonitorRecord(const QUrl& folderUrl);
  Q_INVOKABLE void stopMonitorRecord();
  Q_INVOKABLE void LumoSetStandby(int);
  Q_INVOKABLE void LumoSetSpinRate(int);
  Q_INVOKABLE void LumoSetReturnMode(int);
  Q_INVOKABLE int LumoGetCorrection(const QString&);
  Q_INVOKABLE QVariantList LumoGetLidarFunctionSafety();
  Q_INVOKABLE QString LumoGetBaudRate();
  Q_INVOKABLE void LumoSetBaudRateFromUI(const QString& baudRateStr);
  Q_INVOKABLE QVariantList LumoGetDestinationConfig(bool silent = false);
  Q_INVOKABLE bool LumoSetDestinationIPandPort(const QString& ip, int port);
  Q_INVOKABLE QVariantList LumoGetNetConfig(bool silent = false);
  Q_INVOKABLE bool LumoSetNet(const QString& ip, const QString& mask, const QString& gateway,
                              int vlan_flag, int vlan_id);
  Q_INVOKABLE void LumoSetUpgradeMode(int);
  Q_INVOKABLE void KivaSetIMURange(int angularRangeIndex, int accelRangeIndex);
  Q_INVOKABLE QString getPVNowName();
  Q_INVOKABLE bool isTimerUpdate(int i, int j, int k);

  QVariantList myMap() const;
  QString ipAddress() const;
  QString udpPort() const;
  QString port() const;
  QString serialPort485() const;
  QString serialPort232() const;
  QString baudRate() const;
  bool enableCmxClientHostPortUi() const;
  QString cmxClientHostPort() const;
  QString errorMessage() const;
  QString successMessage() const;
  int commandLogCnt() const;
  QVariantList sendCommandHistory() const;
  bool isConnected() const;
  QVariantList fovList() const;
  bool isUpgrading() const;
  bool isDownloadLog() const;
  QVariantList lidarModelList() const;
  int upgradeProgress() const;
  int upgradeProgressTotalLen() const;
  int connectType() const;
  QVariantList level1List() const;
  QVariantList level2List() const;
  QVariantList lumoLidarInfo() const;
  QVariantList lumoLidarVersionInfo() const;
  bool isGetPBLVersion() const;
  QVariantList logRepeaterModel() const;
  QVariantList monitorHwVersionList() const;
  QString currentMonitorHwVersion() const;
  bool monitorAutoRefresh() const;
  int monitorRecordDurationSec() const;
  int monitorRecordIntervalSec() const;
  bool isMonitorRecording() const;
  int monitorModuleIndex() const;
  int monitorContentRevision() const;

  void setIpAddress(const QString& ip);
  void setUdpPort(const QString& port);
  void setPort(const QString& port);
  void setSerialPort485(const QString& name);
  void setSerialPort232(const QString& name);
  /// A text that is no number above 0 is ignored, as for the UDP port, and initInfoChanged makes
  /// the field show the value that still holds.
  void setBaudRate(const QString& baud_rate_bps);
  void setCmxClientHostPort(const QString& port);
  void setIsDownloadLog(bool running);
  void setMonitorAutoRefresh(bool on);
  /// 1 s to a week, and 1 s to an hour. A number beyond that is brought within it, and
  /// monitorRecordParamsChanged makes the field show what holds. A running recording keeps its own.
  void setMonitorRecordDurationSec(int seconds);
  void setMonitorRecordIntervalSec(int seconds);

  /// What the monitor page says over time.
  MonitorFeed& Monitor();
  /// The lidar's settings as files.
  LidarSettings& Settings();

 private:
  struct Parts;

  void ShowRefreshedPage();
  void ShowAll();
  void ShowCaughtUp();
  void ShowPage(int page);
  void ShowFov();
  void ReportFaults(const TableFaults& faults);
  void TakeSetting(std::string* setting, const QString& text);
  void ShowLink();
  void ShowMonitorPage();
  void FinishOperationLog(OperationLogOutcome outcome);

  /// Every member reaches what it needs through this, which holds it to the thread.
  const OnOwnThread<Parts> parts_;
};
