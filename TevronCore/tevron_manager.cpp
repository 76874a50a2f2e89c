#include "tevron_manager.h"

#include <exception>
#include <iostream>
#include <mutex>
#include <utility>

#include "connection/connection_settings.h"
#include "tevron_manager_parts.h"
#include "variables/model_list.h"
#include "variables/page_variants.h"

TevronManager* TevronManager::Instance(bool flag, const std::string& table_path) {
  static std::once_flag once;
  static TevronManager* instance = nullptr;
  std::call_once(once, [&] { instance = new TevronManager(flag, table_path); });
  return instance;
}

TevronManager::TevronManager(bool flag, const std::string& table_path)
    : parts_(std::make_unique<Parts>(*this, flag, table_path)) {}

TevronManager::~TevronManager() = default;

void TevronManager::SetModulePV(const QString& model_name) {
  if (model_name.isEmpty() || !lidarModelList().contains(QVariant(model_name))) {
    return;
  }
  InitConfigFileParser(model_name);
  parts_->product_variant = model_name.toStdString();
  emit lidarModelListChanged();
}

void TevronManager::InitConfigFileParser(const QString& model_name) {
  const std::string name = model_name.toStdString();
  // A connection belongs to the model that it was made for.
  if (parts_->connecting || (parts_->state.connected && name != parts_->model->name)) {
    Stop();
  }
  emit lidarClearModel();
  parts_->TakeModel(LoadLidarModel(parts_->table_folder + "/" + name + ".csv"));
  parts_->settings.host_port = LoadHostPort(SettingsFilePath(), name).value_or("ANY");
  emit connectTypeChanged();
  emit featureConfigChanged();
  emit initInfoChanged();
  emit fovConfigChanged();
  emit lidarModelChanged();
  emit myMapChanged();
  emit lidarShowModel();
  ReportFaults(parts_->model->faults);
}

void TevronManager::ReportFaults(const std::vector<std::string>& faults) {
  constexpr size_t kMaxLines = 20;
  // Posted, so that what is wrong with the first model, which is loaded before there are screens,
  // stands in the log window as well.
  for (size_t i = 0; i < faults.size() && i < kMaxLines; ++i) {
    parts_->posted->LogLine(faults[i], LogType::kError);
  }
  if (faults.size() > kMaxLines) {
    parts_->posted->LogLine(
        std::to_string(faults.size() - kMaxLines) + " more faults in the tables are not shown.",
        LogType::kError);
  }
  if (!parts_->model->table->InTableOrder().empty()) {
    return;
  }
  parts_->report.Error("No variables could be loaded for the model " + parts_->model->name + ". " +
                       (faults.empty() ? "Its table is empty." : faults.front()));
  // A message from before the screens existed is still there now: announce it once more.
  QMetaObject::invokeMethod(
      this,
      [this] {
        if (!parts_->error_message.isEmpty()) {
          emit errorMessageChanged();
        }
      },
      Qt::QueuedConnection);
}

bool TevronManager::ConnectLidar() {
  if (parts_->connecting) {
    return false;
  }
  if (parts_->state.connected) {
    Disconnect();
  }
  StartAttempt();
  if (!SaveConnectionSettings(SettingsFilePath(), parts_->settings, parts_->model->name)) {
    parts_->report.LogLine(
        "The connection settings could not be saved to " + SettingsFilePath().toStdString(),
        LogType::kWarning);
  }
  return true;
}

void TevronManager::StartAttempt() {
  const int number = ++parts_->attempt_number;
  const ConnectRequest request{parts_->settings, parts_->model, parts_->auto_receive,
                               parts_->byte_flow,
                               std::make_shared<ReportSink>(parts_->posted, LogType::kCmx)};
  const auto on_ended = [this, number](const std::shared_ptr<Connection>& connection) {
    QMetaObject::invokeMethod(
        this, [this, number, connection] { EndAttempt(number, connection); }, Qt::QueuedConnection);
  };
  const auto on_lost = [this, number](const std::string& reason) {
    QMetaObject::invokeMethod(
        this, [this, number, reason] { LoseConnection(number, reason); }, Qt::QueuedConnection);
  };
  parts_->connecting = true;
  parts_->attempt = std::make_unique<ConnectAttempt>(request, ReportOfAttempt(number),
                                                     ConnectAttempt::Handlers{on_ended, on_lost});
}

// What a worker says about a connection that the user has ended since is no news.
std::shared_ptr<UserReport> TevronManager::ReportOfAttempt(int number) {
  return std::make_shared<PostedReport>(
      *this, parts_->report, [this, number] { return parts_->attempt_number == number; });
}

void TevronManager::EndAttempt(int number, const std::shared_ptr<Connection>& connection) {
  if (number != parts_->attempt_number) {
    return;
  }
  parts_->attempt.reset();
  if (connection != nullptr) {
    Adopt(connection);
  }
  // A handler of the signals may have ended this connection and begun another attempt.
  if (number == parts_->attempt_number) {
    parts_->connecting = false;
  }
}

void TevronManager::Adopt(const std::shared_ptr<Connection>& connection) {
  parts_->connection = connection;
  parts_->model->table->ForgetBytes();
  if (parts_->model->connect_type == kNetworkLink) {
    parts_->refresh = std::make_unique<PageRefresh>(
        connection->sender(), parts_->state, *parts_->posted, parts_->ViewInUse(), [this] {
          QMetaObject::invokeMethod(
              this, [this] { ShowRefreshedPage(); }, Qt::QueuedConnection);
        });
  }
  parts_->state.connected = true;
  parts_->report.LogLine("Lidar connected", LogType::kInfo);
  UpdateUI();
  // A handler of the signals may have disconnected already.
  if (parts_->connection != connection) {
    return;
  }
  if (parts_->model->connect_type != kNetworkLink) {
    StartReadingFacts();
  }
  emit isConnectedChanged();
}

void TevronManager::StartReadingFacts() {
  const int number = parts_->attempt_number;
  const auto on_read = [this, number](const DeviceFacts& facts) {
    QMetaObject::invokeMethod(
        this,
        [this, number, facts] {
          if (number == parts_->attempt_number) {
            ShowFacts(facts);
          }
        },
        Qt::QueuedConnection);
  };
  parts_->facts_reading =
      std::make_unique<FactsReading>(parts_->connection->sender(), parts_->state,
                                     parts_->model->connect_type, ReportOfAttempt(number), on_read);
  parts_->facts_reading->Request();
  parts_->reading_facts = true;
  emit isGetPBLVersionChanged();
}

void TevronManager::ShowFacts(const DeviceFacts& facts) {
  parts_->facts = facts;
  // Only the first reading of a connection keeps the screens waiting, the later ones are quiet.
  const bool was_first = std::exchange(parts_->reading_facts, false);
  emit lumoLidarInfoChanged();
  if (was_first) {
    emit isGetPBLVersionChanged();
  }
}

void TevronManager::LoseConnection(int number, const std::string& reason) {
  if (number != parts_->attempt_number) {
    return;
  }
  parts_->report.LogLine(reason, LogType::kError);
  parts_->report.Error(reason);
  Stop();
}

void TevronManager::Disconnect() {
  const bool was_reading_facts = std::exchange(parts_->reading_facts, false);
  parts_->EndConnection();
  if (was_reading_facts) {
    emit isGetPBLVersionChanged();
  }
  emit lumoLidarInfoChanged();
  emit isConnectedChanged();
}

void TevronManager::Stop() {
  try {
    Disconnect();
    // The line for connect type 2 is meant: the port is freed and the screens are told as for the
    // others, but the log says otherwise.
    const bool is_known = parts_->model->connect_type != kSerialCmx;
    parts_->report.LogLine(is_known ? "Lidar disconnected" : "connect type is not support",
                           LogType::kInfo);
  } catch (const std::exception&) {
    std::cout << "stop error\n" << std::flush;
  }
}

bool TevronManager::GetIsConnectingLidar() { return parts_->connecting; }

bool TevronManager::CheckLidarConnection() {
  const std::shared_ptr<Connection> connection = parts_->connection;
  return connection != nullptr && connection->sender()->IsOpen() &&
         LidarAnswers(*connection->sender());
}
