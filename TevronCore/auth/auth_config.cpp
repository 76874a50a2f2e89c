#include "auth/auth_config.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "auth/auth_table.h"

namespace {

/// Nothing when the table has no row of the model, and none that might be it.
std::optional<AuthConfig> FindAuthConfig(const std::string& path, const std::string& model) {
  const AuthTable table(path);
  const std::vector<size_t> rows = table.RowsOf(model);
  if (rows.size() > 1) {
    throw table.Repeated(rows[1], rows[0]);
  }
  if (rows.empty()) {
    // The model's row may be the broken one, and guessing that it has none would send its protected
    // commands unguarded.
    if (!table.broken().empty()) {
      throw table.Broken(table.broken().front());
    }
    return std::nullopt;
  }
  std::vector<AuthTable::Finding> findings;
  const AuthConfig config = table.Read(rows.front(), &findings);
  const auto refusal = std::find_if(findings.begin(), findings.end(),
                                    [](const auto& finding) { return finding.refuses; });
  if (refusal != findings.end()) {
    throw table.Error(rows.front(), *refusal);
  }
  return config;
}

}  // namespace

AuthConfig LoadAuthConfig(const std::string& table, const std::string& model) {
  return FindAuthConfig(table, model).value_or(AuthConfig());
}

AuthConfig AuthConfigOf(const ConfigFolder& folder, const std::string& model) {
  const std::vector<std::string> tables = folder.FilesCalled(kAuthTableName);
  for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
    if (const auto config = FindAuthConfig(*table, model)) {
      return *config;
    }
  }
  return {};
}
