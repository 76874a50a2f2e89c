// What a round does with its lidar, and what has to hold behind each step.

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "lidar_settings.h"
#include "soak/rounds.h"
#include "variables/command_code.h"

namespace {

bool IsShownAsTheLidars(const QVariantMap& leaf) {
  const QString state = leaf["state"].toString();
  return state == "read" || state == "written";
}

/// Until it is read back a value stands there as it was typed: "-1" for "-1.00".
bool IsSame(const QString& left, const QString& right) {
  bool are_numbers = false;
  const double number = left.toDouble(&are_numbers);
  return left == right || (are_numbers && number == right.toDouble(&are_numbers) && are_numbers);
}

/// What the lidar holds for its variables.
QJsonObject HeldBy(const VirtualLidarProcess& lidar) {
  return lidar.State()["variables"].toObject();
}

}  // namespace

std::vector<const VarInfo*> Rounds::Numbers() const {
  std::vector<const VarInfo*> numbers;
  for (const VarInfo* var : manager_->Model()->table->InTableOrder()) {
    // New network settings end the connection.
    if (var->type == kText && var->range_min < var->range_max && var->switch_var_id.empty() &&
        CanBeChanged(*var) && !var->function_module.empty() && !IsCommand(var->set_cmd, 0x21)) {
      numbers.push_back(var);
    }
  }
  return numbers;
}

bool Rounds::ReadsPages() {
  const QVariantList pages = manager_->level1List();
  for (const QVariant& page : pages) {
    OpenPage(page.toString());
    QCoreApplication::processEvents();
  }
  return manager_->isConnected();
}

bool Rounds::SavesAPage(const Lidar& lidar, const VarInfo& var) {
  const QString name = QString::fromStdString(var.var_name);
  const QString page = QString::fromStdString(var.function_module);
  const double before = lidar.process->Held(name).toDouble();
  int wanted = draw_.Number(var.range_min, var.range_max - 1);
  wanted += wanted == before ? 1 : 0;
  OpenPage(page);
  Edit(name, QString::number(wanted));
  successes_.clear();
  const bool connected = manager_->isConnected();
  Save(page);

  const QString held = lidar.process->Held(name);
  const QVariantMap leaf = Leaf(Find(name));
  const QString told = "\"" + name + "\" set to " + QString::number(wanted) + " from " +
                       QString::number(before) + ", held as " + held + ", shown as " +
                       leaf["current_val"].toString() + " (" + leaf["state"].toString() + ")";
  const bool is_held = held.toDouble() == wanted;
  const bool is_shown = IsShownAsTheLidars(leaf) && leaf["current_val"].toDouble() == wanted;
  const bool is_success = !successes_.filter("Set Lidar Successfully").isEmpty();
  if ((is_shown || (is_success && !fault_->lies)) && !is_held) {
    throw RoundFailed("shown as written, and it is not: " + told.toStdString());
  }
  if (connected && manager_->isConnected() && !is_success && errors_.isEmpty()) {
    throw RoundFailed("nothing is said of what became of a page: " + told.toStdString());
  }
  const bool is_done = is_held && is_shown && is_success;
  if (!fault_ && !is_done) {
    throw RoundFailed("a page was not saved: " + told.toStdString());
  }
  ExpectTruth(lidar, is_done ? "" : var.var_name);
  return manager_->isConnected();
}

bool Rounds::SavesAFile(const Lidar& lidar) {
  const QString path = folder_.filePath("soak.tevron.json");
  QFile::remove(path);
  LidarSettings& settings = manager_->Settings();
  settings.Save(path);
  if (!WaitFor([&] { return settings.Now().task == SettingsTask::kNone; }, kPatienceMs)) {
    throw RoundFailed("saving a settings file does not end");
  }
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    return false;
  }
  const QJsonObject held = HeldBy(*lidar.process);
  for (const QJsonValue value : QJsonDocument::fromJson(file.readAll())["values"].toArray()) {
    const QString name = value["name"].toString();
    const QString bytes = value["bytes"].toString();
    // Readings change by themselves.
    if (value["writable"].toBool() && !bytes.isEmpty() &&
        bytes != held[name]["hex"].toString().remove(' ')) {
      throw RoundFailed("a settings file has " + bytes.toStdString() + " for " +
                        name.toStdString());
    }
  }
  return manager_->isConnected();
}

bool Rounds::AnswersByHand(const Lidar& lidar) {
  const auto model = manager_->Model();
  if (model->connect_type != kNetworkLink) {
    manager_->SendCommand("4B", "");
    return !manager_->getSendCmxCommandReturnPayload().isEmpty();
  }
  const VarInfo& identity = *model->table->FindByName("PN");
  manager_->SendCommand(QString::fromStdString(identity.get_cmd), "");
  const QString held = lidar.process->Held("PN", "hex");
  return manager_->getSendCmxCommandReturnPayload().contains(held, Qt::CaseInsensitive);
}

bool Rounds::ComesBack(const Lidar& lidar) {
  const int patience_ms = fault_ ? kPatienceWithAFaultMs : kPatienceMs;
  if (!WaitFor([&] { return lidar.process->Output().contains("\nrestarted"); }, patience_ms)) {
    return false;
  }
  if (manager_->connectType() != kNetworkLink) {
    // The line stays, and the lidar is asked who it is once it answers again.
    return WaitFor([this] { return !manager_->isGetPBLVersion(); }, patience_ms);
  }
  manager_->AwaitLidar();
  return WaitFor([this] { return !manager_->GetIsConnectingLidar(); }, patience_ms) &&
         manager_->isConnected() && ReadsPages();
}

bool Rounds::SpinsAsTold(const Lidar& lidar) {
  const auto held = [&] {
    return lidar.process->State()["maintenance"].toObject()["spin_rate_rpm"].toInt();
  };
  const auto shown = [this] {
    for (const QVariant& fact : manager_->lumoLidarInfo()) {
      const QVariantMap row = fact.toMap();
      if (row["key"] == "spin_rate" && row["state"] == "read") {
        return row["raw"].toInt();
      }
    }
    return 0;
  };
  int wanted = draw_.Number(300, 1199);
  wanted += wanted == held() ? 1 : 0;
  successes_.clear();
  manager_->LumoSetSpinRate(wanted);
  const bool is_success = !successes_.filter("set spin rate successful").isEmpty();
  if (is_success && held() != wanted && !(fault_ && fault_->lies)) {
    throw RoundFailed("a spin rate is not what was told to be set");
  }
  if (!is_success && errors_.isEmpty()) {
    throw RoundFailed("nothing is said of what became of a spin rate");
  }
  const bool is_told = WaitFor([&] { return shown() == wanted; }, fault_ ? 1000 : kPatienceMs);
  if (is_told && held() != wanted) {
    throw RoundFailed("a spin rate is shown that the lidar does not have");
  }
  return is_success && is_told;
}

void Rounds::ExpectTruth(const Lidar& lidar, const std::string& but_for) const {
  const QJsonObject held = HeldBy(*lidar.process);
  for (const VarInfo* var : manager_->Model()->table->InTableOrder()) {
    if (!CanBeChanged(*var) || var->function_module.empty() || var->hidden ||
        var->var_name == but_for) {
      continue;
    }
    const QString name = QString::fromStdString(var->var_name);
    const QVariantMap leaf = Leaf(Find(name));
    if (IsShownAsTheLidars(leaf) &&
        !IsSame(leaf["current_val"].toString(), held[name]["text"].toString())) {
      throw RoundFailed("\"" + var->var_name + "\" is shown as " +
                        leaf["current_val"].toString().toStdString() + ", held as " +
                        held[name]["text"].toString().toStdString());
    }
  }
}
