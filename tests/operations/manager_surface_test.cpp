#include <gtest/gtest.h>

#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <iterator>
#include <string>

#include "tevron_manager.h"

namespace {

struct MethodRow {
  const char* result;
  const char* signature;
  const char* argument_names;
};

struct PropertyRow {
  const char* type;
  const char* name;
  bool writable;
  const char* notify;
};

// Signals, then invokable methods, in the order of their indices.
constexpr MethodRow kMethods[] = {
    {"void", "isConnectedChanged()", ""},
    {"void", "lidarModelChanged()", ""},
    {"void", "lidarClearModel()", ""},
    {"void", "lidarShowModel()", ""},
    {"void", "myMapChanged()", ""},
    {"void", "fovConfigChanged()", ""},
    {"void", "isUpgradingChanged()", ""},
    {"void", "sendCommandHistoryChanged()", ""},
    {"void", "errorMessageChanged()", ""},
    {"void", "successMessageChanged()", ""},
    {"void", "isDownloadLogChanged()", ""},
    {"void", "lidarModelListChanged()", ""},
    {"void", "isResetAllSettingsVisibleChanged()", ""},
    {"void", "sendLogMessage(QString,QString)", "msg,type"},
    {"void", "downloadFinished()", ""},
    {"void", "downloadOperationLogFinished(bool)", "result"},
    {"void", "someVarOutOfRange(QString)", "var_name"},
    {"void", "connectTypeChanged()", ""},
    {"void", "lumoLidarInfoChanged()", ""},
    {"void", "isGetPBLVersionChanged()", ""},
    {"void", "initInfoChanged()", ""},
    {"void", "featureConfigChanged()", ""},
    {"void", "myTimerMapChanged()", ""},
    {"void", "monitorHwVersionListChanged()", ""},
    {"void", "currentMonitorHwVersionChanged()", ""},
    {"void", "monitorAutoRefreshChanged()", ""},
    {"void", "monitorRecordParamsChanged()", ""},
    {"void", "isMonitorRecordingChanged()", ""},
    {"void", "monitorContentChanged()", ""},
    {"void", "InitConfigFileParser(QString)", "model_name"},
    {"void", "InitConfigFileParser()", ""},
    {"bool", "ConnectLidar()", ""},
    {"bool", "CheckLidarConnection()", ""},
    {"void", "Run(int)", "module"},
    {"void", "Stop()", ""},
    {"void", "SetText(int,int,int,int,QString)", "type,level1,level2,level3,text"},
    {"void", "ClearSetMap()", ""},
    {"int", "getSetMapSize()", ""},
    {"void", "StartGetConfigFile()", ""},
    {"void", "SendCommand(QString,QString)", "cmd_qs,payload_qs"},
    {"QString", "getSendCmxCommandReturnHeader()", ""},
    {"QString", "getSendCmxCommandReturnPayload()", ""},
    {"int", "Restart()", ""},
    {"int", "Reset()", ""},
    {"int", "UpgradeLidar(QUrl,int,int,int)", "fileUrl,,,"},
    {"int", "LumoUpgradeLidar(QUrl)", "fileUrl"},
    {"int", "KivaUpgradeLidar(QUrl)", "fileUrl"},
    {"int", "DownloadOperationLog(QUrl)", "fileUrl"},
    {"int", "DownloadOperationLogThread(QUrl)", "fileUrl"},
    {"int", "DownloadLog(QUrl,QString)", "fileUrl,type"},
    {"void", "GetLidarModuleInfo(int)", "module"},
    {"bool", "UpdateSingleVarInfo(QString,QString)", "qs_var_info,search_type"},
    {"bool", "UpdateSingleVarInfo(QString)", "qs_var_info"},
    {"bool", "CheckVarIsWithinRange(QString,QString)", "qs_var_info,search_type"},
    {"bool", "CheckVarIsWithinRange(QString)", "qs_var_info"},
    {"bool", "CheckModuleVarsWithinRange(int)", "module"},
    {"void", "SetMultiFovConfig(int,QString)", "index,fov"},
    {"void", "UpdateUI()", ""},
    {"void", "setErrorMsg(QString)", "str"},
    {"void", "setSuccessMsg(QString)", "str"},
    {"void", "SetLogBytesFlowStatus(bool)", "flag"},
    {"bool", "GetIsConnectingLidar()", ""},
    {"bool", "CheckVarExistsInConfigFileByName(QString)", "qs_var_info"},
    {"QString", "getLidarSN()", ""},
    {"QString", "getLidarPN()", ""},
    {"void", "setModuleIndexUse(int)", ""},
    {"void", "selectMonitorHwVersion(QString)", "version"},
    {"void", "refreshMonitor()", ""},
    {"void", "startMonitorRecord(QUrl)", "folderUrl"},
    {"void", "stopMonitorRecord()", ""},
    {"void", "LumoSetStandby(int)", ""},
    {"void", "LumoSetSpinRate(int)", ""},
    {"void", "LumoSetReturnMode(int)", ""},
    {"int", "LumoGetCorrection(QString)", ""},
    {"QVariantList", "LumoGetLidarFunctionSafety()", ""},
    {"QString", "LumoGetBaudRate()", ""},
    {"void", "LumoSetBaudRateFromUI(QString)", "baudRateStr"},
    {"QVariantList", "LumoGetDestinationConfig(bool)", "silent"},
    {"QVariantList", "LumoGetDestinationConfig()", ""},
    {"bool", "LumoSetDestinationIPandPort(QString,int)", "ip,port"},
    {"QVariantList", "LumoGetNetConfig(bool)", "silent"},
    {"QVariantList", "LumoGetNetConfig()", ""},
    {"bool", "LumoSetNet(QString,QString,QString,int,int)", "ip,mask,gateway,vlan_flag,vlan_id"},
    {"void", "LumoSetUpgradeMode(int)", ""},
    {"void", "KivaSetIMURange(int,int)", "angularRangeIndex,accelRangeIndex"},
    {"QString", "getPVNowName()", ""},
    {"bool", "isTimerUpdate(int,int,int)", "i,j,k"},
};

constexpr PropertyRow kProperties[] = {
    {"QVariantList", "myMap", false, "myMapChanged"},
    {"QString", "ip_address", true, "initInfoChanged"},
    {"QString", "udpPort", true, "initInfoChanged"},
    {"QString", "port", true, "initInfoChanged"},
    {"QString", "serial_port_485", true, "initInfoChanged"},
    {"QString", "serial_port_232", true, "initInfoChanged"},
    {"QString", "baud_rate", true, "initInfoChanged"},
    {"bool", "enableCmxClientHostPortUi", false, "featureConfigChanged"},
    {"QString", "cmxClientHostPort", true, "initInfoChanged"},
    {"QString", "errorMessage", false, "errorMessageChanged"},
    {"QString", "successMessage", false, "successMessageChanged"},
    {"QString", "SendCmxCommandReturnHeader", false, "sendCommandHistoryChanged"},
    {"QString", "SendCmxCommandReturnPayload", false, "sendCommandHistoryChanged"},
    {"int", "CommandLogCnt", false, "sendCommandHistoryChanged"},
    {"QVariantList", "SendCommandHistory", false, "sendCommandHistoryChanged"},
    {"bool", "IsConnected", false, "isConnectedChanged"},
    {"QVariantList", "FovList", false, "fovConfigChanged"},
    {"bool", "IsUpgrading", false, "isUpgradingChanged"},
    {"bool", "IsDownloadLog", true, "isDownloadLogChanged"},
    {"QVariantList", "LidarModelList", false, "lidarModelListChanged"},
    {"int", "upgradeProgress", false, ""},
    {"int", "upgradeProgressTotalLen", false, ""},
    {"int", "connectType", false, "connectTypeChanged"},
    {"QVariantList", "level1List", false, "lidarModelChanged"},
    {"QVariantList", "level2List", false, "lidarModelChanged"},
    {"QVariantList", "LumoLidarInfo", false, "lumoLidarInfoChanged"},
    {"QVariantList", "LumoLidarVersionInfo", false, "lumoLidarInfoChanged"},
    {"bool", "isGetPBLVersion", false, "isGetPBLVersionChanged"},
    {"QVariantList", "logRepeaterModel", false, "lidarModelChanged"},
    {"QVariantList", "monitorHwVersionList", false, "monitorHwVersionListChanged"},
    {"QString", "currentMonitorHwVersion", false, "currentMonitorHwVersionChanged"},
    {"bool", "monitorAutoRefresh", true, "monitorAutoRefreshChanged"},
    {"int", "monitorRecordDurationSec", true, "monitorRecordParamsChanged"},
    {"int", "monitorRecordIntervalSec", true, "monitorRecordParamsChanged"},
    {"bool", "isMonitorRecording", false, "isMonitorRecordingChanged"},
    {"int", "monitorModuleIndex", false, "lidarModelChanged"},
    {"int", "monitorContentRevision", false, "monitorContentChanged"},
};

const QMetaObject& Meta() { return TevronManager::staticMetaObject; }

TEST(ManagerSurface, MethodsStandInTheirOrder) {
  ASSERT_EQ(static_cast<int>(std::size(kMethods)), Meta().methodCount() - Meta().methodOffset());
  int row = Meta().methodOffset();
  for (const MethodRow& want : kMethods) {
    const QMetaMethod method = Meta().method(row);
    const int index = row++ - Meta().methodOffset();
    SCOPED_TRACE(index);
    EXPECT_STREQ(want.signature, method.methodSignature().constData());
    EXPECT_STREQ(want.result, method.typeName());
    EXPECT_STREQ(want.argument_names, method.parameterNames().join(',').constData());
    EXPECT_EQ(index < 29 ? QMetaMethod::Signal : QMetaMethod::Method, method.methodType());
    EXPECT_EQ(QMetaMethod::Public, method.access());
  }
}

TEST(ManagerSurface, PropertiesStandInTheirOrder) {
  ASSERT_EQ(static_cast<int>(std::size(kProperties)),
            Meta().propertyCount() - Meta().propertyOffset());
  int row = Meta().propertyOffset();
  for (const PropertyRow& want : kProperties) {
    SCOPED_TRACE(want.name);
    const QMetaProperty property = Meta().property(row++);
    EXPECT_STREQ(want.name, property.name());
    EXPECT_STREQ(want.type, property.typeName());
    EXPECT_TRUE(property.isReadable());
    EXPECT_EQ(want.writable, property.isWritable());
    const std::string notify =
        property.hasNotifySignal() ? property.notifySignal().name().toStdString() : "";
    EXPECT_EQ(want.notify, notify);
  }
}

TEST(ManagerSurface, DeclaresNothingElse) {
  EXPECT_STREQ("QObject", Meta().superClass()->className());
  EXPECT_EQ(0, Meta().enumeratorCount() - Meta().enumeratorOffset());
  EXPECT_EQ(0, Meta().classInfoCount() - Meta().classInfoOffset());
  EXPECT_EQ(0, Meta().constructorCount());
}

}  // namespace
