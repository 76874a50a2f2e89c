#include "variables/feature_config.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "variables/csv_table.h"
#include "variables/fault_list.h"
#include "variables/number_text.h"
#include "variables/utf8_text.h"

namespace {

using kavel::lidar::StaleInput;

constexpr char kModel[] = "Model";
constexpr char kHostPort[] = "EnableCmxClientHostPortUi";
constexpr char kStaleInput[] = "StaleInputWait";
constexpr char kConnectType[] = "ConnectType";
constexpr char kSerialKind[] = "SerialKind";
constexpr char kLink[] = "Link";

std::optional<size_t> RowOf(const CsvTable& table, size_t model_column, const std::string& model) {
  for (size_t row = 0; row < table.row_count(); ++row) {
    if (Trim(table.Cell(row, model_column)) == model) {
      return row;
    }
  }
  return std::nullopt;
}

/// One table, and where what is wrong with it goes.
class FeatureTable {
 public:
  /// Tells what is wrong with it as a whole. Throws std::runtime_error when nothing can be looked
  /// up in it.
  FeatureTable(const std::string& path, FaultList* faults) : table_(path), faults_(*faults) {
    for (const CsvFault& fault : table_.faults()) {
      faults_.Fault(fault.line, fault.reason + ". The row is left out");
    }
    model_column_ = table_.header().Column(kModel);
    if (!table_.header().FindColumn(kHostPort)) {
      faults_.Fault(0, std::string("Can't find a column named ") + kHostPort);
    }
    TellColumns();
  }

  size_t row_count() const { return table_.row_count(); }
  std::optional<size_t> Find(const std::string& model) const {
    return RowOf(table_, model_column_, model);
  }
  std::string ModelOf(size_t row) const { return std::string(Cell(row, model_column_)); }
  size_t LineOf(size_t row) const { return table_.LineOf(row); }

  ModelFeatures Read(size_t row) const;
  /// Tells every row but the first of `model`.
  void TellRepetitions(const std::string& model) const;
  void TellMissingTable(size_t row) const {
    faults_.Fault(table_.LineOf(row), "model " + Quoted(ModelOf(row)) +
                                          " has no variable table; write the name of a model, or "
                                          "leave the row out");
  }

 private:
  template <typename Value>
  using Meanings = std::vector<std::pair<const char*, Value>>;

  std::string_view Cell(size_t row, size_t column) const { return Trim(table_.Cell(row, column)); }
  template <typename Value>
  void Take(size_t row, const char* column, const Meanings<Value>& meanings, const char* instead,
            Value* value) const;
  void TellColumns() const;
  void TellForeignText(size_t row) const;

  const CsvTable table_;
  FaultList& faults_;
  size_t model_column_ = 0;
};

ModelFeatures FeatureTable::Read(size_t row) const {
  TellForeignText(row);
  const std::string model = ModelOf(row);
  const ModelTraits by_name = TraitsOf(model);
  ModelFeatures features;
  features.connect_type = by_name.connect;
  features.family = by_name.family;
  Take<bool>(row, kHostPort, {{"0", false}, {"1", true}},
             "1 to offer the field for the local port, or 0", &features.host_port_enabled);
  Take<StaleInput>(row, kStaleInput,
                   {{"always", StaleInput::kAlways}, {"trouble", StaleInput::kAfterTrouble}},
                   "trouble or always", &features.stale_input);
  Take<ConnectType>(row, kConnectType, {{"0", kNetworkLink}, {"1", kSerialPair}, {"2", kSerialCmx}},
                    "0 for the network, 1 for a pair of serial ports, 2 for one serial line",
                    &features.connect_type);
  Take<SerialFamily>(
      row, kSerialKind,
      {{"0", SerialFamily::kNone}, {"1", SerialFamily::kLumo}, {"2", SerialFamily::kKiva}},
      "0 for none, 1 for a Lumo, 2 for a Kiva", &features.family);
  if (features.connect_type != kNetworkLink && features.family == SerialFamily::kNone) {
    faults_.Fault(LineOf(row),
                  "model \"" + model + "\" is reached over a serial line, and " + kSerialKind +
                      " does not say what kind of model it is: write 1 for a Lumo, 2 for a "
                      "Kiva, or " +
                      kConnectType + " 0");
  }
  Take<NetworkLink>(row, kLink, {{"tcp", NetworkLink::kTcp}, {"tls", NetworkLink::kTls}},
                    "tcp or tls", &features.link);
  if (features.connect_type != kNetworkLink && features.link == NetworkLink::kTls) {
    faults_.Fault(LineOf(row), "model \"" + model + "\" is reached over a serial line, where " +
                                   kLink + " cannot be tls; leave it empty, or write " +
                                   kConnectType + " 0. It counts as empty until then");
    features.link = NetworkLink::kTcp;
  }
  return features;
}

/// Sets *value to what the cell means; an empty cell leaves it.
template <typename Value>
void FeatureTable::Take(size_t row, const char* column, const Meanings<Value>& meanings,
                        const char* instead, Value* value) const {
  const auto index = table_.header().FindColumn(column);
  const std::string_view text = index ? Cell(row, *index) : std::string_view();
  if (text.empty()) {
    return;
  }
  const auto meaning = std::find_if(meanings.begin(), meanings.end(),
                                    [&](const auto& entry) { return text == entry.first; });
  if (meaning != meanings.end()) {
    *value = meaning->second;
    return;
  }
  faults_.Fault(LineOf(row), std::string(column) + ' ' + Quoted(text) + " is unknown; write " +
                                 instead + ". It counts as empty until then");
}

void FeatureTable::TellRepetitions(const std::string& model) const {
  std::optional<size_t> first;
  for (size_t row = 0; row < row_count(); ++row) {
    if (ModelOf(row) != model) {
      continue;
    }
    if (first) {
      faults_.Fault(LineOf(row), "model \"" + model + "\" has its row on line " +
                                     std::to_string(LineOf(*first)) +
                                     " already; remove one of the two");
    }
    first = first.value_or(row);
  }
}

void FeatureTable::TellColumns() const {
  CheckColumns(table_.header(), {kModel, kHostPort, kStaleInput, kConnectType, kSerialKind, kLink},
               &faults_);
}

void FeatureTable::TellForeignText(size_t row) const {
  const auto& names = table_.header().names;
  for (size_t column = 0; column < names.size(); ++column) {
    const std::string_view cell = table_.Cell(row, column);
    if (Utf8PrefixOf(cell) != cell.size()) {
      faults_.Fault(LineOf(row),
                    names[column] + " is no UTF-8 text; save the table in that encoding");
    }
  }
}

/// Hands each table that can be used to `use`, in the order in which they are read.
template <typename Use>
void ForEachTable(const ConfigFolder& config, TableFaults* faults, Use use) {
  for (const std::string& path : config.FilesCalled(kFeatureTableName)) {
    FaultList found(path);
    try {
      use(path, FeatureTable(path, &found));
    } catch (const std::runtime_error& error) {
      found.Fault(0, error.what());
    }
    found.MoveTo(faults);
  }
}

}  // namespace

ModelFeatures LoadFeatures(const ConfigFolder& config, const std::string& model,
                           TableFaults* faults) {
  const ModelTraits by_name = TraitsOf(model);
  ModelFeatures features;
  features.connect_type = by_name.connect;
  features.family = by_name.family;
  ForEachTable(config, faults, [&](const std::string& /*path*/, const FeatureTable& table) {
    if (const auto row = table.Find(model)) {
      features = table.Read(*row);
      table.TellRepetitions(model);
    }
  });
  return features;
}

std::vector<std::pair<std::string, size_t>> CheckFeatures(const ConfigFolder& config,
                                                          TableFaults* faults) {
  std::vector<std::pair<std::string, size_t>> rows;
  const std::vector<std::string> models = config.Models();
  const std::string shipped = config.path() + '/' + kFeatureTableName;
  std::error_code ignored;
  if (std::filesystem::status(shipped, ignored).type() == std::filesystem::file_type::not_found) {
    faults->push_back({0,
                       shipped + ": there is no such file; install it again. Every model has the "
                                 "values of empty cells until then",
                       TableFault::Severity::kFault, shipped});
  }
  ForEachTable(config, faults, [&](const std::string& path, const FeatureTable& table) {
    rows.emplace_back(path, table.row_count());
    std::set<std::string> seen;
    for (size_t row = 0; row < table.row_count(); ++row) {
      const std::string model = table.ModelOf(row);
      table.Read(row);
      if (!seen.insert(model).second) {
        continue;
      }
      table.TellRepetitions(model);
      if (!std::binary_search(models.begin(), models.end(), model)) {
        table.TellMissingTable(row);
      }
    }
  });
  return rows;
}

bool IsHostPortUiEnabled(const std::string& table, const std::string& model) {
  std::unique_ptr<CsvTable> features;
  try {
    features = std::make_unique<CsvTable>(table);
  } catch (const std::runtime_error&) {
    return false;
  }
  const size_t model_column = features->header().Column(kModel);
  const size_t column = features->header().Column(kHostPort);
  const auto row = RowOf(*features, model_column, model);
  return row && Trim(features->Cell(*row, column)) == "1";
}
