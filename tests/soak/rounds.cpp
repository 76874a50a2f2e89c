#include "soak/rounds.h"

#include <algorithm>

#include "CmxClient/device_commands.h"
#include "auth/auth_config.h"
#include "variables/command_code.h"

namespace {

// In the order of their turns. Seven, so that a fault in every tenth round meets all of them.
constexpr const char* kTurns[] = {"Orca", "Osprey", "Orca",    "Kiva-CMX",
                                  "Orca", "Osprey", "Lumo-CMX"};

}  // namespace

Rounds::Rounds(unsigned seed) : draw_(seed) {
  for (const char* const model : {"Orca", "Osprey", "Kiva-CMX", "Lumo-CMX"}) {
    lidars_.push_back(
        {model, std::make_unique<VirtualLidarProcess>(QStringList{"--model", model})});
  }
}

void Rounds::Run(bool with_fault) {
  const QString model = kTurns[turn_];
  strikes_ = with_fault;
  RunWith(*std::find_if(lidars_.begin(), lidars_.end(),
                        [&](const Lidar& lidar) { return lidar.model == model; }));
  if (!with_fault) {
    turn_ = (turn_ + 1) % std::size(kTurns);
  }
}

void Rounds::RunWith(Lidar& lidar) {
  fault_.reset();
  log_.clear();
  TakeErrors();
  manager_->InitConfigFileParser(lidar.model);
  try {
    if (manager_->connectType() == kNetworkLink) {
      NetworkRound(lidar);
    } else {
      SerialRound(lidar);
    }
    manager_->Stop();
    if (manager_->isConnected() || manager_->GetIsConnectingLidar()) {
      throw RoundFailed("stopping has not ended the connection");
    }
  } catch (const std::exception& failure) {
    throw RoundFailed(failure.what() + Scene(lidar));
  }
  if (fault_) {
    lidar.process->SetFaults({});
  }
  lidar.process->Forget();
  ++counts_[fault_ ? fault_->name : "none"];
}

void Rounds::NetworkRound(Lidar& lidar) {
  PointAt(lidar.process->port());
  const std::vector<const VarInfo*> numbers = Numbers();
  const VarInfo& var =
      *numbers[static_cast<size_t>(draw_.Number(0, static_cast<int>(numbers.size()) - 1))];
  Strike(lidar, WireCommandOf(var.set_cmd).code);
  const bool whole = Goes(Connect(), "connecting") && Goes(ReadsPages(), "reading all pages") &&
                     Goes(SavesAPage(lidar, var), "saving a page") &&
                     Goes(SavesAFile(lidar), "saving a settings file") &&
                     Goes(AnswersByHand(lidar), "a command by hand") &&
                     Goes(manager_->Restart() == 0, "ordering a restart") &&
                     Goes(ComesBack(lidar), "coming back");
  // What was saved without an answer may never have been read since.
  ExpectTruth(lidar, whole ? "" : var.var_name);
}

void Rounds::SerialRound(Lidar& lidar) {
  manager_->setSerialPort485(lidar.process->SerialPort());
  Strike(lidar, kavel::lidar::kCmdSetSpinRate);
  const auto identifies = [this] {
    return Connect() && WaitFor([this] { return !manager_->isGetPBLVersion(); }, kPatienceMs);
  };
  Goes(identifies(), "connecting") && Goes(SpinsAsTold(lidar), "setting the spin rate") &&
      Goes(AnswersByHand(lidar), "a command by hand") &&
      Goes(manager_->Restart() == 0, "ordering a restart") && Goes(ComesBack(lidar), "coming back");
}

void Rounds::Strike(Lidar& lidar, uint8_t write_command) {
  if (!strikes_) {
    return;
  }
  const AuthConfig auth = AuthConfigOf(ConfigFolder("./Config"), lidar.model.toStdString());
  fault_ = draw_.Next({write_command, auth.enabled, manager_->connectType() != kNetworkLink});
  lidar.process->SetFaults({fault_->order});
}

bool Rounds::Goes(bool step, const char* what) {
  const QStringList errors = TakeErrors();
  if (!fault_ && (!step || !errors.isEmpty())) {
    throw RoundFailed(std::string(what) + " failed: " + errors.join("; ").toStdString());
  }
  return step;
}

std::string Rounds::Scene(const Lidar& lidar) const {
  const QStringList printed = lidar.process->Output().split('\n');
  return "\nmodel: " + lidar.model.toStdString() +
         "\nfault: " + (fault_ ? fault_->order.toStdString() : "none") + "\nthe log:\n" +
         log_.join('\n').toStdString() + "\nthe virtual lidar:\n" +
         printed.mid(std::max(0, printed.size() - 40)).join('\n').toStdString();
}

std::map<QString, Resources> Rounds::AtRest(const std::map<QString, Resources>& before) {
  log_.clear();
  successes_.clear();
  manager_->InitConfigFileParser("Osprey");
  manager_->InitConfigFileParser("Orca");
  std::map<QString, Resources> now;
  const auto look = [&] {
    now = {{"Tevron", OwnResources()}};
    for (const Lidar& lidar : lidars_) {
      now[lidar.model] = ResourcesOf(lidar.process->id());
    }
    return before.empty() || std::all_of(now.begin(), now.end(), [&](const auto& one) {
             return Growth(before.at(one.first), one.second).isEmpty();
           });
  };
  WaitFor(look, kPatienceWithAFaultMs);
  return now;
}
