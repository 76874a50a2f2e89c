#include "monitor_source.h"

#include <QFileInfo>
#include <algorithm>
#include <memory>
#include <new>
#include <numeric>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tevron_manager.h"

namespace {

std::vector<PlotName> NamesOf(const std::vector<MonitorVariable>& variables) {
  std::vector<PlotName> names;
  names.reserve(variables.size());
  for (const MonitorVariable& variable : variables) {
    names.push_back({QString::fromStdString(variable.name), QString::fromStdString(variable.unit)});
  }
  return names;
}

void Append(const MonitorSample& sample, const std::vector<size_t>& columns, PlotData* data) {
  std::vector<PlotReading> readings;
  readings.reserve(columns.size());
  for (const size_t column : columns) {
    const MonitorValue& value = sample.values[column];
    readings.push_back({value.number, value.fresh});
  }
  data->Append(sample.time_ms, readings);
}

// The columns of a recording that hold numbers at all.
std::vector<size_t> NumberColumns(const MonitorFile& file) {
  std::vector<size_t> columns;
  for (size_t column = 0; column < file.variables.size(); ++column) {
    const bool has_numbers = std::any_of(
        file.samples.begin(), file.samples.end(),
        [column](const MonitorSample& sample) { return sample.values[column].has_number(); });
    if (has_numbers) {
      columns.push_back(column);
    }
  }
  return columns;
}

// Three times the usual distance of two samples: one line more or less is no gap.
double BridgeOf(const std::vector<MonitorSample>& samples) {
  std::vector<int64_t> distances;
  for (size_t i = 1; i < samples.size(); ++i) {
    distances.push_back(samples[i].time_ms - samples[i - 1].time_ms);
  }
  if (distances.empty()) {
    return 0;
  }
  const auto middle = distances.begin() + static_cast<ptrdiff_t>(distances.size() / 2);
  std::nth_element(distances.begin(), middle, distances.end());
  return 3.0 * static_cast<double>(*middle);
}

}  // namespace

MonitorSource::MonitorSource(QObject* parent) : QObject(parent) {}

MonitorSource::~MonitorSource() { EndReading(); }

void MonitorSource::SetManager(QObject* manager) {
  if (manager_ == manager) {
    return;
  }
  manager_ = manager;
  auto* tevron = qobject_cast<TevronManager*>(manager);
  SetFeed(tevron == nullptr ? nullptr : &tevron->Monitor());
  emit managerChanged();
}

void MonitorSource::SetFeed(MonitorFeed* feed) {
  if (feed_ != nullptr) {
    disconnect(feed_, nullptr, this, nullptr);
  }
  feed_ = feed;
  if (feed != nullptr) {
    connect(feed, &MonitorFeed::restarted, this, &MonitorSource::TakeVariables);
    connect(feed, &MonitorFeed::sampled, this, &MonitorSource::TakeSamples);
    connect(feed, &MonitorFeed::recordingChanged, this, &MonitorSource::recordingChanged);
  }
  TakeVariables();
  emit recordingChanged();
}

QString MonitorSource::record_file() const { return QString::fromStdString(recording().file); }

bool MonitorSource::Draws(const QString& caption) const {
  for (int row = 0; row < live_.count(); ++row) {
    const PlotName& name = live_.NameOf(row);
    if (caption == (name.unit.isEmpty() ? name.name : name.name + " (" + name.unit + ')')) {
      return true;
    }
  }
  return false;
}

void MonitorSource::Open(const QUrl& url) {
  if (opening_) {
    return;
  }
  EndReading();
  opening_ = true;
  emit openingChanged();
  const QString path = url.isLocalFile() ? url.toLocalFile() : url.toString();
  reading_ = std::thread([this, path] {
    auto file = std::make_shared<MonitorFile>();
    QString problem;
    try {
      *file = ReadMonitorFile(path.toStdString());
    } catch (const std::runtime_error& error) {
      problem = QString::fromStdString(error.what());
    } catch (const std::bad_alloc&) {
      problem = tr("There is not enough memory for %1.").arg(path);
    }
    const auto take = [this, path, file, problem] {
      EndReading();
      if (problem.isEmpty()) {
        TakeFile(QFileInfo(path).fileName(), *file);
      } else {
        emit failed(problem);
      }
    };
    QMetaObject::invokeMethod(this, take, Qt::QueuedConnection);
  });
}

void MonitorSource::Close() {
  open_file_.clear();
  faults_.clear();
  recorded_.Restart({});
  emit opened();
}

const MonitorRecording& MonitorSource::recording() const {
  static const MonitorRecording none;
  return feed_ == nullptr ? none : feed_->recording();
}

void MonitorSource::TakeVariables() {
  taken_ = 0;
  live_.Restart(feed_ == nullptr ? std::vector<PlotName>() : NamesOf(feed_->variables()));
  TakeSamples();
}

void MonitorSource::TakeSamples() {
  if (feed_ == nullptr) {
    return;
  }
  std::vector<size_t> all(feed_->variables().size());
  std::iota(all.begin(), all.end(), size_t{0});
  for (taken_ = std::max(taken_, feed_->begin()); taken_ < feed_->end(); ++taken_) {
    Append(feed_->At(taken_), all, &live_);
  }
  live_.Announce();
}

void MonitorSource::TakeFile(const QString& name, const MonitorFile& file) {
  const std::vector<size_t> columns = NumberColumns(file);
  std::vector<MonitorVariable> variables;
  variables.reserve(columns.size());
  for (const size_t column : columns) {
    variables.push_back(file.variables[column]);
  }
  recorded_.Restart(NamesOf(variables));
  for (const MonitorSample& sample : file.samples) {
    Append(sample, columns, &recorded_);
  }
  recorded_bridge_ms_ = BridgeOf(file.samples);
  open_file_ = name;
  faults_.clear();
  if (file.samples.size() > PlotSeries::kCapacity) {
    faults_ << tr("Only the last %1 of %2 samples are shown.")
                   .arg(PlotSeries::kCapacity)
                   .arg(file.samples.size());
  }
  for (const std::string& fault : file.faults) {
    faults_ << QString::fromStdString(fault);
  }
  emit opened();
  recorded_.Announce();
}

void MonitorSource::EndReading() {
  if (reading_.joinable()) {
    reading_.join();
  }
  if (opening_) {
    opening_ = false;
    emit openingChanged();
  }
}
