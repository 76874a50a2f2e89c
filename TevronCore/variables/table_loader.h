#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "variables/config_parser.h"
#include "variables/csv_table.h"
#include "variables/payload_layout.h"

/// One loading of a table into an empty ConfigParser: rows to records, then their order and places
/// in the payloads. Lives only inside ConfigParser::ExtractConfigInfo.
class TableLoader {
 public:
  explicit TableLoader(ConfigParser* parser) : parser_(*parser) {}

  /// Throws std::runtime_error for a missing column; what was loaded by then is the caller's to
  /// drop.
  void Load();

 private:
  enum Column : size_t {
    kGroupId,
    kIndex,
    kGet,
    kSet,
    kSetIndex,
    kVarName,
    kPermission,
    kVarType,
    kDefaultValue,
    kOptions,
    kUnit,
    kCoefficient,
    kOptionDescription,
    kFunctionModule,
    kVarLen,
    kTimerUpdate,
    kSetCoefficient,
    kMandatoryColumns,
    kGetCmdPayload = kMandatoryColumns,
    kSetCmdPayload,
    kColumns,
  };

  // Beside each record of the parser's storage, by the same index.
  struct Row {
    std::optional<int32_t> set_index;
    bool replaced = false;
  };

  void FindColumns();
  void LoadRow(size_t row);
  void KeepDirective(size_t row);
  bool ReadCells(VarInfo* var);
  bool ReadLength(VarInfo* var);
  void ReadCommands(VarInfo* var);
  void CheckCommandText(std::string_view column, const std::string& text);
  void CheckCells(const VarInfo& var);
  int32_t ReadNumber(Column column, const char* name);
  float ReadCoefficient(Column column, const char* name, float when_empty);
  std::vector<uint8_t> ReadPayload(Column column, const char* name);
  void KeepName(ConfigParser::Record* record);
  void Insert(ConfigParser::Record* record);

  void PlaceInTableOrder();
  void Place(const Row& row, VarInfo* var);
  void CheckSwitchReferences();

  std::string_view Cell(Column column) const { return table_->Cell(row_, columns_[column]); }
  std::string Text(Column column) const { return std::string(Cell(column)); }
  void Fault(const std::string& reason) { FaultAt(line_, reason); }
  void FaultAt(size_t line, const std::string& reason);

  ConfigParser& parser_;
  std::optional<CsvTable> table_;
  std::array<size_t, kColumns> columns_{};
  std::vector<Row> rows_;
  std::unordered_set<std::string> read_commands_;
  std::string last_get_;  // of the row before
  std::string last_set_;
  PayloadLayout layout_;
  ConfigParser::CommandUsage* usage_ = nullptr;  // of the Set placed last
  bool refers_to_switch_ = false;
  size_t row_ = 0;   // the row being loaded
  size_t line_ = 0;  // its line of the file
};
