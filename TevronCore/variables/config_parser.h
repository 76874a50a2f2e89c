#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "CmxClient/lock_order.h"
#include "variables/field_group.h"
#include "variables/table_loader.h"
#include "variables/var_info.h"

/// What the text of a value is worth.
enum class ValueState {
  kNotRead,  ///< this connection's lidar has not told it
  kRead,     ///< the lidar's
  kEdited,   ///< the user's, not saved
  kWritten,  ///< accepted by the lidar and not read back since
  kDiffers,  ///< read back, and not what was written
};

/// "unread", "read", "edited", "written" or "differs".
const char* TextOf(ValueState state);

/// The variables of one model, with the value of each.
///
/// The shape (which variables exist, their order, commands, places) is what LoadTable gave and may
/// be read on any thread. The values are guarded by one lock inside and may be used on any thread.
/// Pointers and references to VarInfo live as long as the parser, or until the next
/// ExtractConfigInfo: share the parser by std::shared_ptr and load another model into another one.
class ConfigParser {
 public:
  /// A consistent copy of one variable's value.
  struct Value {
    std::string text;            ///< What the user sees: the edit if there is one.
    std::vector<uint8_t> bytes;  ///< What the lidar last told or accepted.
    bool has_bytes = false;      ///< Whether it did since the connection began.
    bool edited = false;         ///< The text is the user's and has not been saved.
    ValueState state = ValueState::kNotRead;
    std::optional<std::chrono::system_clock::time_point> read_at;  ///< Of the last reading.
    std::string wanted;   ///< In the state kDiffers: the text that was written.
    std::string reading;  ///< Of an edit: the text that it is laid over; empty if nothing was read.
    std::string read_failure;  ///< Why the last attempt to read it failed; empty if it did not.
  };

  /// A place in a payload, in bytes.
  struct Position {
    int32_t start = 0;
    int32_t length = 0;
  };

  ConfigParser() = default;
  explicit ConfigParser(LoadedTable table);
  /// The variables of `base`'s own table, the same objects with the values that they have there
  /// now, and behind them those of another table, unread. An edit or a reading of one parser is
  /// none of the other from then on.
  ConfigParser(const ConfigParser& base, LoadedTable added);
  ConfigParser(const ConfigParser&) = delete;
  ConfigParser& operator=(const ConfigParser&) = delete;

  /// Replaces everything held by the contents of the table; see LoadTable. When that throws, the
  /// parser is empty. For one thread.
  void ExtractConfigInfo(const std::string& path);

  /// Where the variable's bytes lie in the payload of `cmd` (a command text): among the written
  /// fields if some row writes with `cmd`, else in its reply. Nothing when no row uses `cmd`.
  /// "Shared Secret Key" lies at 0 and is `wanted_length` long: its length depends on who asks.
  std::optional<Position> PositionOf(const std::string& cmd, const VarInfo& var,
                                     int32_t wanted_length) const;

  /// The same by id. False with one line on standard output when the variable is unknown, has no
  /// command, or no row uses `cmd`. Of "Shared Secret Key" the record takes over the place, on
  /// purpose; therefore for one thread.
  bool GetVarPosOffset(const std::string& cmd, const std::string& var_id, int32_t length,
                       int32_t& pos, int32_t& len);

  /// The variable with this id or name; null if there is none. An added table counts only where
  /// the own one has none.
  const VarInfo* Find(const std::string& var_id) const;
  const VarInfo* FindByName(const std::string& var_name) const;

  /// File that the table was read from; of two tables the first.
  const std::string& path() const { return table_->path; }

  const std::vector<const VarInfo*>& InTableOrder() const { return variables_; }

  /// Whether it stands in the model's own table, not in one that was added.
  bool IsOwn(const VarInfo& var) const { return var.table_position < table_->rows.size(); }

  /// Variables that this command writes, however its code is written: the fields of its payload.
  const std::vector<const VarInfo*>& WrittenBy(const std::string& set_cmd) const;

  /// Rows with "GroupID" 0, in table order.
  const std::vector<TableDirective>& Directives() const { return table_->directives; }

  /// Everything found wrong while loading the own table, in the order of the lines.
  const TableFaults& Faults() const { return table_->faults; }

  // Values. `var` is a variable of this parser.

  Value ValueOf(const VarInfo& var) const;

  /// The values of several variables as they are at one moment, in the order given.
  std::vector<Value> ValuesOf(const std::vector<const VarInfo*>& vars) const;

  /// A connection begins: nothing has been read. Edits stay as they are; other texts go back to
  /// the defaults.
  void ForgetReadings();

  /// Takes over what the lidar answered. An edited variable keeps showing the edit; the answer is
  /// remembered for DropEdits either way. Tells whether the lidar kept what was last written.
  void StoreReading(const VarInfo& var, std::string text, std::vector<uint8_t> bytes);

  /// As StoreReading, for bytes that have no text form: the text is empty from then on, since the
  /// default is nothing that the lidar said.
  void StoreBytes(const VarInfo& var, std::vector<uint8_t> bytes);

  /// Remembers until the next reading why the variables could not be read.
  void NoteReadFailure(const std::vector<const VarInfo*>& vars, const std::string& reason);

  /// Takes over what the lidar accepted: the reading from now on. An edit of the same text ends.
  void StoreWritten(const VarInfo& var, const std::string& text, std::vector<uint8_t> bytes);

  /// Whether the lidar told or accepted this text, or the same number in another text ("12.5" for
  /// "12.50"), so that an edit to it would change nothing.
  bool IsReading(const VarInfo& var, const std::string& text) const;

  /// Shows the user's text until DropEdits.
  void Edit(const VarInfo& var, std::string text);

  /// Back to the last reading, or to the default where nothing was read.
  void DropEdits(const std::vector<const VarInfo*>& vars);

  /// What a switch shows when it is turned on: its last reading or edit that was not 0, else the
  /// lower end of its range if that is not 0, else "1".
  std::string SwitchOnText(const VarInfo& var) const;

 private:
  /// What happened to a value since the table was loaded.
  struct Live {
    std::vector<uint8_t> bytes;
    std::vector<uint8_t> written;  ///< what the next reading is compared with, unless empty
    std::string written_text;
    std::string reading;
    std::string edit;
    std::string read_failure;
    std::string last_on;  ///< last text that was not 0, of a switch
    std::optional<std::chrono::system_clock::time_point> read_at;
    ValueState state = ValueState::kNotRead;  ///< without regard to the edit
    bool has_bytes = false;
    bool edited = false;

    const std::string& shown() const { return edited ? edit : reading; }
  };

  void StartAnew();
  VarInfo& Own(const VarInfo& var);
  const VarInfo* FindBy(VarIndex LoadedTable::*index, const std::string& text) const;
  Live& LiveOf(const VarInfo& var);
  static void RememberSwitchOn(const VarInfo& var, Live* live);
  static void Compare(Live* live, std::vector<uint8_t> bytes);
  Value CopyValue(const VarInfo& var) const;

  std::shared_ptr<LoadedTable> table_ = std::make_shared<LoadedTable>();
  std::shared_ptr<LoadedTable> added_ = std::make_shared<LoadedTable>();
  std::vector<const VarInfo*> variables_;    ///< of both
  std::vector<std::unique_ptr<Live>> live_;  ///< by VarInfo::table_position; null: nothing happened
  mutable kavel::lidar::BriefMutex values_mutex_;
};
