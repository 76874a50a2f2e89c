#include "faults/operations.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QMap>
#include <QUrl>
#include <cmath>
#include <functional>

#include "CmxClient/hex_text.h"
#include "lidar_settings.h"
#include "monitor/monitor_feed.h"
#include "monitor/monitor_file.h"

namespace {

constexpr char kPageInView[] = "Scan";
constexpr char kOtherPage[] = "Diagnostics";
constexpr char kSetting[] = "Minimum Distance";
constexpr char kAllSet[] = "Set Lidar Successfully";
// What follows an operation by itself has so long to be told.
constexpr int kSoonMs = 1500;

Outcome Unready(const char* what) { throw std::runtime_error(std::string("not ready: ") + what); }

// Connects, and does without the fault what takes long enough to be measured by.
void Prepare(Bench& bench) {
  bench.heart().Enter("quiet");
  if (!bench.ConnectNow()) {
    Unready("no connection without a fault");
  }
  if (bench.cell().is_network()) {
    bench.OpenPage(kPageInView);
  }
}

Outcome ReadPage(Bench& bench) {
  Prepare(bench);
  bench.Arm();
  bench.heart().Enter("reading a page");
  bench.OpenPage(kOtherPage);
  WaitFor([&] { return bench.IsRead(kOtherPage) || bench.WasToldOfTrouble(); }, kSoonMs);
  const bool is_read = bench.IsRead(kOtherPage);
  return {is_read, is_read};
}

Outcome ReadSafety(Bench& bench) {
  Prepare(bench);
  const QVariantList before = bench.manager().LumoGetLidarFunctionSafety();
  bench.Arm();
  bench.heart().Enter("reading the safety states");
  const QVariantList now = bench.manager().LumoGetLidarFunctionSafety();
  return {!now.isEmpty(), now == before};
}

/// The files there and below, in the order of their names; empty ones count as none.
QList<QByteArray> SavedIn(const QString& folder) {
  QMap<QString, QByteArray> saved;
  QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    QFile file(files.next());
    if (file.open(QIODevice::ReadOnly)) {
      saved[file.fileName()] = file.readAll();
    }
  }
  return saved.values();
}

/// `fetch` saves a file to the folder that it is given, and returns whether it says so.
Outcome Fetch(Bench& bench, const char* step, const std::function<bool(const QString&)>& fetch) {
  Prepare(bench);
  const QString before = bench.Folder("before");
  if (!fetch(before) || SavedIn(before).isEmpty()) {
    return Unready("no download without a fault");
  }
  const QString folder = bench.Folder("after");
  bench.Arm();
  bench.heart().Enter(step);
  const bool is_claimed = fetch(folder);
  const QList<QByteArray> saved = SavedIn(folder);
  // Nothing says how long a log has to be.
  const QString fault = bench.cell().fault->name;
  const bool is_raw = fault == "short" || fault == "long";
  const bool is_same = saved == SavedIn(before);
  return {is_claimed, !saved.isEmpty() && (is_raw || is_same)};
}

}  // namespace

Outcome ConnectToIt(Bench& bench) {
  Prepare(bench);
  bench.manager().Stop();
  bench.Arm();
  bench.heart().Enter("connecting");
  const bool is_connected = bench.ConnectNow();
  if (bench.cell().is_network()) {
    return {is_connected, is_connected};
  }
  bool is_told = is_connected;
  for (const QVariant& fact : bench.manager().lumoLidarInfo()) {
    is_told = is_told && fact.toMap()["state"] == "read";
  }
  return {is_told, is_told};
}

Outcome Read(Bench& bench) {
  return bench.cell().is_network() ? ReadPage(bench) : ReadSafety(bench);
}

Outcome Save(Bench& bench) {
  Prepare(bench);
  const QString wanted = bench.lidar().Held(kSetting) == "45" ? "46" : "45";
  bench.Edit(kSetting, wanted);
  bench.Arm();
  bench.heart().Enter("saving");
  TevronManager& manager = bench.manager();
  const int page = manager.level1List().indexOf(kPageInView);
  manager.Run(page);
  // Reading back would hide it.
  const QStringList wrong = bench.WrongValues(false);
  if (!wrong.isEmpty() && QString(bench.cell().fault->name) != "lies") {
    throw std::runtime_error("once it was sent, " + wrong.join("; ").toStdString());
  }
  manager.GetLidarModuleInfo(page);
  return {bench.WasTold(kAllSet), bench.lidar().Held(kSetting) == wanted};
}

Outcome SaveSettingsFile(Bench& bench) {
  Prepare(bench);
  const QString path = bench.Folder("settings") + "/kept.tevron.json";
  LidarSettings& settings = bench.manager().Settings();
  bench.Arm();
  bench.heart().Enter("saving a settings file");
  settings.Save(path);
  WaitFor([&] { return settings.Now().task == SettingsTask::kNone; }, 60000);
  if (!QFile::exists(path)) {
    return {};
  }
  std::string error;
  const SettingsFile file = LoadSettings(path, &error).value();
  bool is_whole = true;
  for (const SavedValue& value : file.values) {
    is_whole = is_whole && value.was_read();
    const QString held = bench.lidar().Held(QString::fromStdString(value.name), "hex");
    // Readings change by themselves.
    if (value.writable && value.bytes &&
        kavel::lidar::HexText(*value.bytes) != held.toStdString()) {
      throw std::runtime_error("the file has " + kavel::lidar::HexText(*value.bytes) + " for " +
                               value.name);
    }
  }
  return {bench.WasTold("success: ") && !bench.WasTold("could not be read"), is_whole};
}

Outcome SendByConsole(Bench& bench) {
  Prepare(bench);
  const QString code = bench.cell().is_network() ? "11" : "4E";
  TevronManager& manager = bench.manager();
  manager.SendCommand(code, "");
  const QString before = manager.getSendCmxCommandReturnPayload();
  bench.Arm();
  bench.heart().Enter("sending by the console");
  manager.SendCommand(code, "");
  const QString header = manager.getSendCmxCommandReturnHeader();
  const bool is_accepted = header.section(' ', 2, 3) == code.toLower() + " 00";
  // The console shows what came, however much that is.
  const QString fault = bench.cell().fault->name;
  const bool is_raw = fault == "short" || fault == "long";
  const bool is_same = manager.getSendCmxCommandReturnPayload() == before;
  return {is_accepted, is_accepted && (is_same || is_raw), !header.isEmpty()};
}

Outcome SetSpinRate(Bench& bench) {
  Prepare(bench);
  const auto held = [&] {
    return bench.lidar().State()["maintenance"].toObject()["spin_rate_rpm"].toInt();
  };
  const int wanted = held() == 900 ? 1200 : 900;
  bench.Arm();
  bench.heart().Enter("setting the spin rate");
  bench.manager().LumoSetSpinRate(wanted);
  return {bench.WasTold("set spin rate successful"), held() == wanted};
}

Outcome RestartIt(Bench& bench) {
  Prepare(bench);
  bench.Arm();
  bench.heart().Enter("restarting");
  const bool is_claimed = bench.manager().Restart() == 0;
  const auto is_carried_out = [&] { return bench.Printed().contains("restarted"); };
  return {is_claimed, WaitFor(is_carried_out, kSoonMs)};
}

Outcome Upgrade(Bench& bench) {
  Prepare(bench);
  bench.Arm();
  bench.heart().Enter("upgrading");
  TevronManager& manager = bench.manager();
  const QUrl file = QUrl::fromLocalFile(bench.firmware());
  bench.cell().is_network() ? manager.UpgradeLidar(file, 0, 0, 0) : manager.LumoUpgradeLidar(file);
  WaitFor([&] { return !manager.isUpgrading() && !bench.Told().isEmpty(); }, 60000);
  // What is streamed ends in a restart.
  const bool is_taken = WaitFor(
      [&] {
        const QJsonObject firmware = bench.lidar().State()["firmware"].toObject();
        return !firmware["waiting"].toArray().isEmpty() || bench.Printed().contains("restarted");
      },
      kSoonMs);
  return {bench.WasTold("transmitted successfully"), is_taken};
}

Outcome Download(Bench& bench) {
  TevronManager& manager = bench.manager();
  return Fetch(bench, "downloading", [&](const QString& folder) {
    return bench.cell().is_network()
               ? manager.DownloadLog(QUrl::fromLocalFile(folder), "Event Log") == 0
               : manager.LumoGetCorrection(folder + "/calibration.bin") == 0;
  });
}

Outcome DownloadOperationLog(Bench& bench) {
  TevronManager& manager = bench.manager();
  return Fetch(bench, "downloading the operation log", [&](const QString& folder) {
    bool is_successful = false;
    bool has_ended = false;
    const auto connection =
        QObject::connect(&manager, &TevronManager::downloadOperationLogFinished, [&](bool result) {
          has_ended = true;
          is_successful = result;
        });
    manager.DownloadOperationLogThread(QUrl::fromLocalFile(folder));
    WaitFor([&] { return has_ended; }, 60000);
    QObject::disconnect(connection);
    return is_successful;
  });
}

Outcome Record(Bench& bench) {
  Prepare(bench);
  TevronManager& manager = bench.manager();
  const QString folder = bench.Folder("recording");
  const auto samples = [&] { return manager.Monitor().recording().samples; };
  manager.startMonitorRecord(QUrl::fromLocalFile(folder));
  if (!WaitFor([&] { return samples() >= 1; })) {
    Unready("nothing was recorded without a fault");
  }
  bench.Arm();
  bench.heart().Enter("recording");
  const auto at_least = samples() + 2;  // the first one may have begun before the fault
  WaitFor([&] { return samples() >= at_least; });
  const bool is_fresh = manager.Monitor().recording().fresh;
  manager.stopMonitorRecord();
  const bool is_saved = WaitFor([&] { return bench.WasTold("Monitor record saved"); });
  bool is_right = is_saved;
  const QString path = folder + '/' + QDir(folder).entryList(QDir::Files).value(0);
  const MonitorFile file = ReadMonitorFile(path.toStdString());
  for (const MonitorSample& sample : file.samples) {
    for (size_t i = 0; i < sample.values.size(); ++i) {
      const QString name = QString::fromStdString(file.variables[i].name);
      const double number = sample.values[i].number;
      const bool is_text = std::isnan(number);
      is_right = is_right && (is_text || number == bench.lidar().Held(name).toDouble());
    }
  }
  if (!is_right) {
    throw std::runtime_error("the recording is missing, or holds what the lidar never said");
  }
  return {is_fresh, true};
}

Outcome WatchLink(Bench& bench) {
  Prepare(bench);
  TevronManager& manager = bench.manager();
  bool is_refreshed = false;
  QObject::connect(&manager, &TevronManager::myTimerMapChanged, [&] { is_refreshed = true; });
  bench.Arm();
  bench.heart().Enter("idle");
  WaitFor([&] { return is_refreshed || bench.WasToldOfTrouble(); }, 4500);
  QObject::disconnect(&manager, &TevronManager::myTimerMapChanged, nullptr, nullptr);
  if (!bench.cell().is_network()) {
    return {manager.isConnected(), manager.isConnected()};
  }
  bench.heart().Enter("checking the link");
  const bool is_alive = manager.CheckLidarConnection();
  return {is_alive, is_alive};
}
