#include "auth/auth_config.h"

#include <optional>
#include <string_view>

#include "auth/auth_algorithm.h"
#include "variables/csv_table.h"
#include "variables/number_text.h"

namespace {

/// The cells of one row, with the place of each for the messages.
class Row {
 public:
  Row(const CsvTable& table, size_t row, const std::string& path)
      : table_(table), row_(row), path_(path) {}

  std::string_view Cell(const char* column) const {
    return table_.Cell(row_, table_.header().Column(column));
  }

  uint32_t Command(const char* column) const {
    return Code(column, Cell(column), "empty auth cmd");
  }

  std::set<uint8_t> CommandSet(const char* column) const {
    std::set<uint8_t> commands;
    std::string_view rest = Cell(column);
    if (Trim(rest).empty()) {
      return commands;  // nothing is protected; only an item between separators can be missing
    }
    for (size_t end = 0; end != std::string_view::npos;) {
      end = rest.find('|');
      commands.insert(static_cast<uint8_t>(Code(column, rest.substr(0, end), "empty hex byte")));
      rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return commands;
  }

  int32_t Decimal(const char* column) const {
    const std::optional<int32_t> value = WholeNumber(Trim(Cell(column)));
    if (!value) {
      Fail(column, "\"" + std::string(Cell(column)) + "\" is no decimal number");
    }
    return *value;
  }

 private:
  /// A hexadecimal code, "0x" allowed; `if_empty` is the reason given when there are no digits.
  uint32_t Code(const char* column, std::string_view text, const char* if_empty) const {
    text = WithoutHexPrefix(Trim(text));
    if (text.empty()) {
      Fail(column, if_empty);
    }
    const auto code = WholeNumber<uint32_t>(text, 16);
    if (!code) {
      Fail(column, "\"" + std::string(text) + "\" is no hexadecimal command code");
    }
    return *code;
  }

  [[noreturn]] void Fail(const char* column, const std::string& reason) const {
    throw AuthConfigError(
        reason, path_ + ", line " + std::to_string(table_.LineOf(row_)) + ", column " + column);
  }

  const CsvTable& table_;
  const size_t row_;
  const std::string& path_;
};

AuthConfig ReadEnabledRow(const Row& row) {
  AuthConfig config;
  config.enabled = true;
  config.algorithm_id = ParseAuthAlgorithmId(std::string(row.Cell("AlgorithmID")));
  config.probe_cmd = row.Command("ProbeCmd");
  config.challenge_cmd = row.Command("ChallengeCmd");
  config.response_cmd = row.Command("ResponseCmd");
  config.protected_cmds = row.CommandSet("ProtectedCmds");
  config.probe_offset = row.Decimal("ProbeValueOffset");
  config.probe_len = row.Decimal("ProbeValueLen");
  config.probe_little_endian = Trim(row.Cell("ProbeEndian")) == "little";
  return config;
}

}  // namespace

AuthConfig LoadAuthConfig(const std::string& table, const std::string& model) {
  const CsvTable csv(table);
  const size_t model_column = csv.header().Column("Model");
  const size_t enable_column = csv.header().Column("Enable");
  for (size_t i = 0; i < csv.row_count(); ++i) {
    // Meant: these two cells count as they stand, blanks included.
    if (csv.Cell(i, model_column) == model) {
      return csv.Cell(i, enable_column) == "1" ? ReadEnabledRow(Row(csv, i, table)) : AuthConfig();
    }
  }
  // The model's row may be the broken one, and guessing that it has none would send its protected
  // commands unguarded.
  if (!csv.faults().empty()) {
    throw AuthConfigError(csv.faults().front().reason,
                          table + ", line " + std::to_string(csv.faults().front().line));
  }
  return AuthConfig();
}
