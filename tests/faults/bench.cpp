#include "faults/bench.h"

#include <signal.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <chrono>

namespace {

constexpr std::chrono::milliseconds kDiesAfter{150};

/// "name: shown, held" when the two differ.
void Compare(const QString& name, const QString& shown, const QString& now, const QString& before,
             QStringList* wrong) {
  if (shown != now && shown != before) {
    *wrong << name + ": " + shown + " is shown, " + now + " is held";
  }
}

}  // namespace

Bench::~Bench() {
  if (killer_.joinable()) {
    killer_.join();
  }
}

void Bench::Begin(const Cell& cell) {
  cell_.emplace(cell);
  is_ended_ = false;
  const QString model = cell.link->model;
  if (QString(cell.operation->name) == "upgrade") {
    firmware_ = folders_.filePath("image.patch");
    VirtualLidarProcess::MakeFirmware(model, "2.8.0", firmware_, 8);
  }
  QDir("Config/site").removeRecursively();
  if (cell.link->is_tls) {
    MakeTls();
  }
  if (lidars_.count(cell.link) == 0) {
    lidars_[cell.link] = std::make_unique<VirtualLidarProcess>(Arguments());
  }
  held_before_ = lidar().State();
  manager_->InitConfigFileParser(model);
  heart_.Enter("");
  heart_.Forget();
}

QStringList Bench::Arguments() const {
  QStringList arguments = {"--model", cell_->link->model, "--seed", "0", "--log-size", "4000"};
  if (cell_->link->is_tls) {
    const QString folder = folders_.filePath("tls");
    arguments << "--tls" << folder + "/lidar.pem" << folder + "/lidar-key.pem";
  }
  return arguments;
}

// The CA is known here, so that nobody is asked whose certificate it is.
void Bench::MakeTls() {
  const QString folder = folders_.filePath("tls");
  if (!QFile::exists(folder)) {
    VirtualLidarProcess::MakeTlsFiles(folder);
  }
  const QString model = cell_->link->model;
  QDir().mkpath("Config/site/tls/" + model);
  QFile::copy(folder + "/ca.pem", "Config/site/tls/" + model + "/ca.pem");
  install_.Write("Config/site/feature_config.csv",
                 "Model,EnableCmxClientHostPortUi,StaleInputWait,Link\n" + model.toStdString() +
                     ",0,trouble,tls\n");
}

bool Bench::ConnectNow() {
  PointAt(lidar().port());
  manager_->setSerialPort485(lidar().SerialPort("485"));
  manager_->setSerialPort232(lidar().SerialPort("232"));
  return Connect() && WaitFor([this] { return !manager_->isGetPBLVersion(); });
}

void Bench::Forget() {
  for (QStringList* told : {&log_, &errors_, &remedies_, &successes_}) {
    told->clear();
  }
}

void Bench::Rest() {
  manager_->Stop();
  manager_->InitConfigFileParser("Osprey");
  manager_->InitConfigFileParser("Orca");
  lidar().Forget();
  Forget();
}

QString Bench::Scene() const {
  const bool is_there = lidars_.count(cell_->link) != 0;
  const QStringList printed = is_there ? lidar().Output().split('\n') : QStringList();
  return "\nthe log:\n" + log_.join('\n') + "\nthe virtual lidar:\n" +
         printed.mid(std::max(0, printed.size() - 40)).join('\n');
}

void Bench::Arm() {
  Forget();
  held_before_ = lidar().State();
  output_before_ = lidar().Output().size();
  heart_.Enter("");
  quiet_ms_ = heart_.longest_ms();
  heart_.Forget();
  memory_.Begin();
  lidar().SetFaults({cell_->Order()});
  if (cell_->fault->act == Act::kGone) {
    lidar().Kill();
    is_ended_ = true;
  } else if (cell_->fault->act == Act::kDies) {
    killer_ = std::thread([this, id = static_cast<pid_t>(lidar().id())] {
      std::this_thread::sleep_for(kDiesAfter);
      is_ended_ = ::kill(id, SIGKILL) == 0;
    });
  }
}

void Bench::Disarm() {
  if (killer_.joinable()) {
    killer_.join();
  }
  if (is_ended_) {
    lidar().Kill();
    lidars_[cell_->link] = std::make_unique<VirtualLidarProcess>(Arguments(), lidar().port());
  } else {
    lidar().SetFaults({});
  }
}

bool Bench::Struck() const {
  const QString mark = "[fault: " + QString(cell_->fault->order).section('=', 0, 0);
  return is_ended_ || cell_->is_quiet() || Printed().contains(mark);
}

QStringList Bench::Told() const {
  QStringList told;
  for (const QString& text : errors_) {
    told << "error: " + text;
  }
  for (const QString& text : remedies_) {
    if (!text.isEmpty()) {
      told << "remedy: " + text;
    }
  }
  for (const QString& text : successes_) {
    told << "success: " + text;
  }
  for (const QString& line : log_) {
    if (line.startsWith("WARNING") || line.startsWith("ERROR")) {
      told << line;
    }
  }
  return told;
}

bool Bench::WasTold(const QString& piece) const { return !Told().filter(piece).isEmpty(); }

bool Bench::WasToldOfTrouble() const {
  const QStringList told = Told();
  return told.filter("success: ").size() < told.size();
}

bool Bench::IsRead(const QString& page) const {
  const QVariantList rows = manager_->myMap()[manager_->level1List().indexOf(page)].toList();
  for (const QVariant& row : rows) {
    for (const QVariant& leaf : row.toList()) {
      const QVariantMap fields = leaf.toMap();
      if (!fields["get_cmd"].toString().isEmpty() && fields["state"] != "read") {
        return false;
      }
    }
  }
  return true;
}

QStringList Bench::WrongValues(bool strictly) const {
  const QJsonObject now = lidar().State();
  const QJsonObject& before = strictly ? now : held_before_;
  return cell_->is_network() ? WrongVariables(now, before) : WrongFacts(now, before);
}

QStringList Bench::WrongVariables(const QJsonObject& now, const QJsonObject& before) const {
  const auto held = [](const QJsonObject& state, const QString& name) {
    return state["variables"].toObject()[name].toObject()["text"].toString();
  };
  QStringList wrong;
  for (const QVariant& page : manager_->myMap()) {
    for (const QVariant& row : page.toList()) {
      for (const QVariant& leaf : row.toList()) {
        const QVariantMap fields = leaf.toMap();
        const QString state = fields["state"].toString();
        const QString name = fields["var_name"].toString();
        const bool is_told = state == "read" || state == "written" || state == "differs";
        // What has no text has nothing that could be shown wrongly, and durations go on.
        if (is_told && fields["var_type"] != "DT" && !held(now, name).isEmpty()) {
          const QString earlier = state == "written" ? held(now, name) : held(before, name);
          Compare(name, fields["current_val"].toString(), held(now, name), earlier, &wrong);
        }
      }
    }
  }
  return wrong;
}

QStringList Bench::WrongFacts(const QJsonObject& now, const QJsonObject& before) const {
  const auto held = [](const QJsonObject& state, const QString& key) {
    const QJsonObject settings = state["maintenance"].toObject();
    const QJsonObject variables = state["variables"].toObject();
    if (key == "serial_number" || key == "part_number") {
      const QString name = key == "serial_number" ? "SN" : "PN";
      return variables[name].toObject()["text"].toString();
    }
    const QString setting = key == "spin_rate" ? "spin_rate_rpm" : key;
    return settings.contains(setting) ? settings[setting].toVariant().toString() : QString();
  };
  QStringList wrong;
  for (const QVariant& fact : manager_->lumoLidarInfo()) {
    const QVariantMap fields = fact.toMap();
    const QString key = fields["key"].toString();
    if (fields["state"] == "read" && key != "up_time") {
      Compare(key, fields["raw"].toString(), held(now, key), held(before, key), &wrong);
    }
  }
  return wrong;
}

QString Bench::Folder(const QString& name) const {
  QDir(folders_.filePath(name)).removeRecursively();
  QDir(folders_.path()).mkpath(name);
  return folders_.filePath(name);
}
