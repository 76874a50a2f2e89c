#include <gtest/gtest.h>

#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <QStringList>

#include "tevron_manager.h"

namespace {

// Everything in the order of its index.
constexpr char kSignals[] =
    "void isConnectedChanged(); void lidarModelChanged(); void lidarClearModel(); "
    "void lidarShowModel(); void myMapChanged(); void fovConfigChanged(); "
    "void isUpgradingChanged(); void sendCommandHistoryChanged(); void errorMessageChanged(); "
    "void successMessageChanged(); void isDownloadLogChanged(); void lidarModelListChanged(); "
    "void isResetAllSettingsVisibleChanged(); void sendLogMessage(QString msg, QString type); "
    "void downloadFinished(); void downloadOperationLogFinished(bool result); "
    "void someVarOutOfRange(QString var_name); void connectTypeChanged(); "
    "void lumoLidarInfoChanged(); void isGetPBLVersionChanged(); void initInfoChanged(); "
    "void featureConfigChanged(); void myTimerMapChanged(); void monitorHwVersionListChanged(); "
    "void currentMonitorHwVersionChanged(); void monitorAutoRefreshChanged(); "
    "void monitorRecordParamsChanged(); void isMonitorRecordingChanged(); "
    "void monitorContentChanged()";
constexpr char kMethods[] =
    "void InitConfigFileParser(QString model_name); void InitConfigFileParser(); "
    "bool ConnectLidar(); bool CheckLidarConnection(); void Run(int module); void Stop(); "
    "void SetText(int type, int level1, int level2, int level3, QString text); "
    "void ClearSetMap(); int getSetMapSize(); void StartGetConfigFile(); "
    "void SendCommand(QString cmd_qs, QString payload_qs); "
    "QString getSendCmxCommandReturnHeader(); QString getSendCmxCommandReturnPayload(); "
    "int Restart(); int Reset(); int UpgradeLidar(QUrl fileUrl, int, int, int); "
    "int LumoUpgradeLidar(QUrl fileUrl); int KivaUpgradeLidar(QUrl fileUrl); "
    "int DownloadOperationLog(QUrl fileUrl); int DownloadOperationLogThread(QUrl fileUrl); "
    "int DownloadLog(QUrl fileUrl, QString type); void GetLidarModuleInfo(int module); "
    "bool UpdateSingleVarInfo(QString qs_var_info, QString search_type); "
    "bool UpdateSingleVarInfo(QString qs_var_info); "
    "bool CheckVarIsWithinRange(QString qs_var_info, QString search_type); "
    "bool CheckVarIsWithinRange(QString qs_var_info); "
    "bool CheckModuleVarsWithinRange(int module); "
    "void SetMultiFovConfig(int index, QString fov); void UpdateUI(); "
    "void setErrorMsg(QString str); void setSuccessMsg(QString str); "
    "void SetLogBytesFlowStatus(bool flag); bool GetIsConnectingLidar(); "
    "bool CheckVarExistsInConfigFileByName(QString qs_var_info); QString getLidarSN(); "
    "QString getLidarPN(); void setModuleIndexUse(int); "
    "void selectMonitorHwVersion(QString version); void refreshMonitor(); "
    "void startMonitorRecord(QUrl folderUrl); void stopMonitorRecord(); "
    "void LumoSetStandby(int); void LumoSetSpinRate(int); void LumoSetReturnMode(int); "
    "int LumoGetCorrection(QString); QVariantList LumoGetLidarFunctionSafety(); "
    "QString LumoGetBaudRate(); void LumoSetBaudRateFromUI(QString baudRateStr); "
    "QVariantList LumoGetDestinationConfig(bool silent); "
    "QVariantList LumoGetDestinationConfig(); "
    "bool LumoSetDestinationIPandPort(QString ip, int port); "
    "QVariantList LumoGetNetConfig(bool silent); QVariantList LumoGetNetConfig(); "
    "bool LumoSetNet(QString ip, QString mask, QString gateway, int vlan_flag, int vlan_id); "
    "void LumoSetUpgradeMode(int); "
    "void KivaSetIMURange(int angularRangeIndex, int accelRangeIndex); QString getPVNowName(); "
    "bool isTimerUpdate(int i, int j, int k)";
// "RW" means writable; behind it the change signal, where there is one.
constexpr char kProperties[] =
    "QVariantList myMap myMapChanged; QString ip_address RW initInfoChanged; "
    "QString udpPort RW initInfoChanged; QString port RW initInfoChanged; "
    "QString serial_port_485 RW initInfoChanged; QString serial_port_232 RW initInfoChanged; "
    "QString baud_rate RW initInfoChanged; bool enableCmxClientHostPortUi featureConfigChanged; "
    "QString cmxClientHostPort RW initInfoChanged; QString errorMessage errorMessageChanged; "
    "QString successMessage successMessageChanged; "
    "QString SendCmxCommandReturnHeader sendCommandHistoryChanged; "
    "QString SendCmxCommandReturnPayload sendCommandHistoryChanged; "
    "int CommandLogCnt sendCommandHistoryChanged; "
    "QVariantList SendCommandHistory sendCommandHistoryChanged; "
    "bool IsConnected isConnectedChanged; QVariantList FovList fovConfigChanged; "
    "bool IsUpgrading isUpgradingChanged; bool IsDownloadLog RW isDownloadLogChanged; "
    "QVariantList LidarModelList lidarModelListChanged; int upgradeProgress; "
    "int upgradeProgressTotalLen; int connectType connectTypeChanged; "
    "QVariantList level1List lidarModelChanged; QVariantList level2List lidarModelChanged; "
    "QVariantList LumoLidarInfo lumoLidarInfoChanged; "
    "QVariantList LumoLidarVersionInfo lumoLidarInfoChanged; "
    "bool isGetPBLVersion isGetPBLVersionChanged; "
    "QVariantList logRepeaterModel lidarModelChanged; "
    "QVariantList monitorHwVersionList monitorHwVersionListChanged; "
    "QString currentMonitorHwVersion currentMonitorHwVersionChanged; "
    "bool monitorAutoRefresh RW monitorAutoRefreshChanged; "
    "int monitorRecordDurationSec RW monitorRecordParamsChanged; "
    "int monitorRecordIntervalSec RW monitorRecordParamsChanged; "
    "bool isMonitorRecording isMonitorRecordingChanged; "
    "int monitorModuleIndex lidarModelChanged; int monitorContentRevision monitorContentChanged";

const QMetaObject& Meta() { return TevronManager::staticMetaObject; }

QString Declaration(const QMetaMethod& method) {
  QStringList arguments;
  for (int i = 0; i < method.parameterCount(); ++i) {
    arguments << QString(method.parameterTypes()[i] + ' ' + method.parameterNames()[i]).trimmed();
  }
  return QString("%1 %2(%3)").arg(method.typeName(), method.name(), arguments.join(", "));
}

QString Declaration(const QMetaProperty& property) {
  EXPECT_TRUE(property.isReadable());
  QString text = QString("%1 %2").arg(property.typeName(), property.name());
  if (property.isWritable()) {
    text += " RW";
  }
  if (property.hasNotifySignal()) {
    text += ' ' + property.notifySignal().name();
  }
  return text;
}

void ExpectRows(const char* want, const QStringList& got) {
  const QStringList rows = QString(want).split("; ");
  ASSERT_EQ(rows.size(), got.size());
  for (int i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i], got[i]) << "index " << i;
  }
}

TEST(ManagerSurface, DeclaresExactlyWhatTheScreensAddressInThatOrder) {
  QStringList signal_rows;
  QStringList methods;
  QStringList properties;
  for (int i = Meta().methodOffset(); i < Meta().methodCount(); ++i) {
    const QMetaMethod method = Meta().method(i);
    EXPECT_EQ(QMetaMethod::Public, method.access());
    (method.methodType() == QMetaMethod::Signal ? signal_rows : methods) << Declaration(method);
  }
  for (int i = Meta().propertyOffset(); i < Meta().propertyCount(); ++i) {
    properties << Declaration(Meta().property(i));
  }
  ExpectRows(kSignals, signal_rows);
  ExpectRows(kMethods, methods);
  ExpectRows(kProperties, properties);
}

}  // namespace
