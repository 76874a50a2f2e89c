#include "auth/auth_table.h"

#include <algorithm>
#include <optional>
#include <set>

#include "auth/auth_algorithm.h"
#include "variables/number_text.h"
#include "variables/utf8_text.h"

namespace {

constexpr char kCodeAdvice[] = "write a hexadecimal command code such as 0x66";
constexpr char kCodesAdvice[] = "write hexadecimal command codes with | between, as in 0x21|0x22";

/// A short frame of a serial line holds no more.
constexpr int32_t kLongestProbeAnswer = 254;

/// Reads the cells of one row, and notes what is wrong with them.
class Row {
 public:
  Row(const CsvTable& table, size_t row, std::vector<AuthTable::Finding>* findings)
      : table_(table), row_(row), findings_(*findings) {}

  std::string_view Cell(const char* column) const {
    return table_.Cell(row_, table_.header().Column(column));
  }

  void CheckEnable() const {
    const std::string_view enable = Cell("Enable");
    if (enable != "1" && enable != "0") {
      Note("Enable",
           Quoted(enable) + " leaves model " + Quoted(Cell("Model")) + " without authentication",
           "write 1, without blanks, or 0 if that is meant");
    }
  }

  int Algorithm() const {
    const int id = ParseAuthAlgorithmId(std::string(Cell("AlgorithmID")));
    if (AuthAlgorithmFactories().count(id) == 0) {
      Note("AlgorithmID",
           Quoted(Cell("AlgorithmID")) + " is no algorithm, so protected commands are refused",
           "write a number from 1 to 4");
    }
    return id;
  }

  uint32_t Command(const char* column) const {
    const uint32_t code = Code(column, Cell(column), "empty auth cmd", kCodeAdvice);
    if (code > 0xFF) {
      Note(column, Quoted(Trim(Cell(column))) + " is longer than a byte, of which the last is sent",
           "write a code from 0x00 to 0xFF");
    }
    return code;
  }

  std::set<uint8_t> ProtectedCommands() const {
    constexpr char kColumn[] = "ProtectedCmds";
    std::set<uint8_t> commands;
    std::string_view rest = Cell(kColumn);
    if (Trim(rest).empty()) {
      return commands;  // nothing is protected; only an item between separators can be missing
    }
    for (size_t end = 0; end != std::string_view::npos;) {
      end = rest.find('|');
      const std::string_view item = rest.substr(0, end);
      const uint32_t code = Code(kColumn, item, "empty hex byte", kCodesAdvice);
      if (code > 0xFF) {
        Refuse(kColumn, Quoted(Trim(item)) + " is longer than a byte", kCodesAdvice);
      }
      commands.insert(static_cast<uint8_t>(code));
      rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return commands;
  }

  int32_t ProbeOffset() const {
    const int32_t offset = Decimal("ProbeValueOffset");
    if (offset < 0 || offset > kLongestProbeAnswer) {
      Note("ProbeValueOffset", std::to_string(offset) + " is no place in an answer",
           "write the number of bytes in front of the value, 0 or more");
    }
    return offset;
  }

  int32_t ProbeLength() const {
    const int32_t length = Decimal("ProbeValueLen");
    if (length != 1 && length != 2 && length != 4 && length != 8) {
      Note("ProbeValueLen",
           std::to_string(length) + " bytes are no number" +
               (length < 1 ? ", so that no authentication is ever required" : ""),
           "write 1, 2, 4 or 8");
    }
    return length;
  }

  bool IsLittleEndian() const {
    const std::string_view endian = Trim(Cell("ProbeEndian"));
    if (endian != "big" && endian != "little" && !endian.empty()) {
      Note("ProbeEndian", Quoted(endian) + " counts as big", "write big or little");
    }
    return endian == "little";
  }

 private:
  int32_t Decimal(const char* column) const {
    const std::optional<int32_t> value = WholeNumber(Trim(Cell(column)));
    if (!value) {
      Refuse(column, Quoted(Cell(column)) + " is no decimal number", "write one, such as 1");
    }
    return value.value_or(1);
  }

  /// A hexadecimal code, "0x" allowed; `if_empty` is the reason given when there are no digits.
  uint32_t Code(const char* column, std::string_view text, const char* if_empty,
                const char* advice) const {
    text = WithoutHexPrefix(Trim(text));
    const auto code = WholeNumber<uint32_t>(text, 16);
    if (!code) {
      Refuse(column, text.empty() ? if_empty : Quoted(text) + " is no hexadecimal command code",
             advice);
    }
    return code.value_or(0);
  }

  void Note(const char* column, const std::string& reason, const std::string& advice) const {
    findings_.push_back({column, reason, advice, false});
  }
  void Refuse(const char* column, const std::string& reason, const std::string& advice) const {
    findings_.push_back({column, reason, advice, true});
  }

  const CsvTable& table_;
  const size_t row_;
  std::vector<AuthTable::Finding>& findings_;
};

// In another encoding a name is not that of a model, and its row protects nothing.
bool IsUtf8(std::string_view text) { return Utf8PrefixOf(text) == text.size(); }

std::string Place(const std::string& path, size_t line) {
  return path + ", line " + std::to_string(line);
}

}  // namespace

AuthTable::AuthTable(const std::string& path)
    : path_(path),
      csv_(path),
      model_column_(csv_.header().Column("Model")),
      enable_column_(csv_.header().Column("Enable")),
      broken_(csv_.faults()) {
  for (size_t row = 0; row < csv_.row_count(); ++row) {
    if (!IsUtf8(csv_.Cell(row, model_column_))) {
      broken_.push_back({csv_.LineOf(row), "Model is no UTF-8 text"});
    }
  }
}

std::vector<size_t> AuthTable::RowsOf(const std::string& model) const {
  std::vector<size_t> rows;
  for (size_t row = 0; row < csv_.row_count(); ++row) {
    if (csv_.Cell(row, model_column_) == model) {
      rows.push_back(row);
    }
  }
  return rows;
}

AuthConfig AuthTable::Read(size_t row, std::vector<Finding>* findings) const {
  const Row cells(csv_, row, findings);
  AuthConfig config;
  cells.CheckEnable();
  config.enabled = EnableOf(row) == "1";
  if (!config.enabled) {
    return config;
  }
  config.algorithm_id = cells.Algorithm();
  config.probe_cmd = cells.Command("ProbeCmd");
  config.challenge_cmd = cells.Command("ChallengeCmd");
  config.response_cmd = cells.Command("ResponseCmd");
  config.protected_cmds = cells.ProtectedCommands();
  config.probe_offset = cells.ProbeOffset();
  config.probe_len = cells.ProbeLength();
  config.probe_little_endian = cells.IsLittleEndian();
  return config;
}

void AuthTable::CheckHeader(FaultList* faults) const {
  CheckColumns(csv_.header(),
               {"Model", "Enable", "AlgorithmID", "ProbeCmd", "ChallengeCmd", "ResponseCmd",
                "ProtectedCmds", "ProbeValueOffset", "ProbeValueLen", "ProbeEndian"},
               faults);
}

AuthConfigError AuthTable::Error(size_t row, const Finding& finding) const {
  return {finding.reason, Place(path_, LineOf(row)) + ", column " + finding.column, finding.advice};
}

AuthConfigError AuthTable::Repeated(size_t row, size_t first) const {
  return {"model " + Quoted(ModelOf(row)) + " has its row on line " +
              std::to_string(LineOf(first)) + " already",
          Place(path_, LineOf(row)), "leave one of them out"};
}

AuthConfigError AuthTable::Broken(const CsvFault& fault) const {
  return {fault.reason, Place(path_, fault.line),
          "mend the row, since no model that has none of its own in this table is connected until "
          "then"};
}
