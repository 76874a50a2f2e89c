#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "variables/config_parser.h"
#include "variables/csv_table.h"

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

  // Progress of one payload while its fields are placed.
  struct Layout {
    int64_t next_position = 0;
    std::optional<int32_t> last_set_index;
    bool unusable = false;  // a field before has no known length
  };
  using Layouts = std::unordered_map<std::string, Layout>;

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
  void MakeNameUnique(VarInfo* var);
  void Insert(ConfigParser::Record* record);

  void ListInTableOrder();
  void PlaceInPayloads();
  void Place(const Row& row, VarInfo* var);
  bool TakeRoom(const std::string& key, Layouts* layouts, int32_t length, int32_t* position);
  void CheckSetIndex(const Row& row, const VarInfo& var, Layout* layout);
  void CheckSwitchReferences();

  std::string_view Cell(Column column) const { return table_->Cell(row_, columns_[column]); }
  std::string Text(Column column) const { return std::string(Cell(column)); }
  void Fault(const std::string& reason) { FaultAt(line_, reason); }
  void FaultAt(size_t line, const std::string& reason);

  ConfigParser& parser_;
  std::optional<CsvTable> table_;
  std::array<size_t, kColumns> columns_{};
  std::vector<Row> rows_;
  std::unordered_map<std::string_view, size_t> storage_of_id_;
  std::unordered_set<std::string> read_commands_;
  Layouts reads_;
  Layouts writes_;
  size_t row_ = 0;   // the row being loaded
  size_t line_ = 0;  // its line of the file
};
