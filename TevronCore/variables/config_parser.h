#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "variables/var_info.h"

/// Something wrong in a table. `text` is complete: file, line and reason.
struct TableFault {
  size_t line = 0;  ///< 1-based line of the file; 0 when the fault is the whole file's.
  std::string text;
};

/// The variables of one model: loads "./Config/varID/<model>.csv" and keeps every variable's value.
///
/// The shape (which variables exist, their order, commands, positions) is fixed by
/// ExtractConfigInfo and may then be read on any thread, Find and GetVarPosOffset excepted, which
/// are for one thread. The values are guarded by one lock inside and may be used on any thread.
/// Pointers and references to VarInfo live until the next ExtractConfigInfo or the end of the
/// parser: share the parser by std::shared_ptr and load another model into another parser.
class ConfigParser {
 public:
  /// Longest value that a row may describe, in bytes: more than any payload of a lidar carries.
  static constexpr int32_t kMaxValueLength = 10240;

  /// Rows that a table may have; a record takes about 1 KB.
  static constexpr size_t kMaxRows = 200000;

  /// A consistent copy of one variable's value.
  struct Value {
    std::string text;            ///< What the user sees: the edit if there is one.
    std::vector<uint8_t> bytes;  ///< What the device last answered.
    bool has_bytes = false;      ///< Whether bytes ever came.
    bool edited = false;         ///< The text is the user's and has not been saved.
  };

  ConfigParser() = default;
  ConfigParser(const ConfigParser&) = delete;
  ConfigParser& operator=(const ConfigParser&) = delete;

  /// Replaces everything held by the contents of the table. Faulty rows are reported on standard
  /// output and in Faults(); the rest loads. A file that cannot be read gives an empty table and a
  /// fault. Throws std::runtime_error "Can't find a column named " and the name when a mandatory
  /// column is missing; the table is empty then too.
  void ExtractConfigInfo(const std::string& path);

  /// Where the variable's bytes lie in the payload of `cmd` (command text as in the table): among
  /// the written fields if some row writes with `cmd`, else in its reply. Returns false with one
  /// line on standard output when the variable is unknown, has no command, or no row uses `cmd`.
  /// "Shared Secret Key" has the position 0 and the `length` passed, which it then keeps.
  bool GetVarPosOffset(const std::string& cmd, const std::string& var_id, int32_t length,
                       int32_t& pos, int32_t& len);

  /// The variable with this id or name; null if there is none.
  const VarInfo* Find(const std::string& var_id) const;
  const VarInfo* FindByName(const std::string& var_name) const;

  /// File that ExtractConfigInfo was last called with.
  const std::string& path() const { return path_; }

  const std::vector<const VarInfo*>& InTableOrder() const { return in_table_order_; }

  /// Variables whose "Set" is exactly this text, in table order: the fields of its payload.
  std::vector<const VarInfo*> WrittenBy(const std::string& set_cmd) const;

  /// Rows with "GroupID" 0, in table order: their non-empty cells from the second column on.
  const std::vector<std::vector<std::string>>& Directives() const { return directives_; }

  /// Everything found wrong while loading.
  const std::vector<TableFault>& Faults() const { return faults_; }

  // Values. `var` is a variable of this parser.

  Value ValueOf(const VarInfo& var) const;

  /// The values of several variables as they are at one moment, in the order given.
  std::vector<Value> ValuesOf(const std::vector<const VarInfo*>& vars) const;

  /// Takes over what the device answered. An edited variable keeps showing the edit; the answer is
  /// remembered for DropEdits either way.
  void StoreReading(const VarInfo& var, std::string text, std::vector<uint8_t> bytes);

  /// As StoreReading, for bytes that have no text form: the text stays.
  void StoreBytes(const VarInfo& var, std::vector<uint8_t> bytes);

  /// No bytes count as the device's any more, because another device may have been connected. The
  /// texts stay.
  void ForgetBytes();

  /// Shows the user's text until DropEdits.
  void Edit(const VarInfo& var, std::string text);

  /// Back to the last reading, or to the default where nothing was read.
  void DropEdits(const std::vector<const VarInfo*>& vars);

  /// What a switch shows when it is turned on: its last reading or edit that was not 0, else the
  /// lower end of its range if that is not 0, else "1".
  std::string SwitchOnText(const VarInfo& var) const;

 private:
  friend class TableLoader;

  struct Record {
    VarInfo info;
    std::vector<uint8_t> bytes;
    std::string reading;  // text of the last reading, the default before the first
    std::string last_on;  // last text that was not 0, of a switch
    bool has_bytes = false;
    bool edited = false;
  };
  struct CommandUsage {
    bool is_set = false;
    std::vector<const VarInfo*> written;
  };

  void Clear();
  Record& RecordOf(const VarInfo& var) { return *records_[var.table_position]; }
  const Record& RecordOf(const VarInfo& var) const { return *records_[var.table_position]; }
  void Show(Record& record, std::string text);
  static Value CopyValue(const Record& record);

  std::string path_;
  std::deque<Record> storage_;    // stable addresses; holds replaced rows too
  std::vector<Record*> records_;  // by VarInfo::table_position
  std::vector<const VarInfo*> in_table_order_;
  std::unordered_map<std::string_view, Record*> by_id_;
  std::unordered_map<std::string_view, Record*> by_name_;
  std::unordered_map<std::string, CommandUsage> commands_;
  std::vector<std::vector<std::string>> directives_;
  std::vector<TableFault> faults_;
  mutable std::mutex values_mutex_;
};
