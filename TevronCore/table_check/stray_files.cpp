#include "table_check/stray_files.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>
#include <vector>

#include "auth/auth_config.h"
#include "auth/auth_keys.h"
#include "auth/tls_files.h"
#include "variables/fault_list.h"
#include "variables/feature_config.h"
#include "variables/monitor_tables.h"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> EntriesOf(const fs::path& folder) {
  std::vector<fs::path> paths;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    paths.push_back(entry->path());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

bool IsFolder(const fs::path& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

std::string InSmallLetters(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// ".csv" of "Heron.CSV"
std::string EndingOf(const fs::path& path) { return InSmallLetters(path.extension().string()); }

/// The check of one folder with the layout of "Config".
class StrayFiles {
 public:
  StrayFiles(const ConfigFolder& folder, const std::string& model, TableFaults* faults)
      : models_(folder.Models()), model_(model), faults_(*faults) {}

  void Check(const ConfigLayer& layer) {
    const fs::path folder = layer.path;
    for (const fs::path& path : EntriesOf(folder)) {
      const std::string name = path.filename().string();
      const bool is_read =
          name == kFeatureTableName || name == kAuthTableName || name == kAuthKeysName;
      if (!is_read && !IsFolder(path) && (EndingOf(path) == ".csv" || EndingOf(path) == ".ini")) {
        Warn(path,
             "the files here are called feature_config.csv, auth_config.csv and "
             "auth_keys.ini, and variable tables lie in the folder varID");
      }
    }
    for (const fs::path& path : EntriesOf(folder / "varID")) {
      if (path.extension() == ".csv" && !IsModel(path.stem().string())) {
        Warn(path, "it has the name of a table, and is no regular file");
      } else if (path.extension() == ".csv" && layer.owner != ConfigLayer::Owner::kProgram) {
        CheckName(path);
      } else if (IsFolder(path)) {
        CheckMonitorTables(path);
      } else if (EndingOf(path) == ".csv" && path.extension() != ".csv") {
        Warn(path, "the name of a table ends with .csv");
      }
    }
    for (const fs::path& path : EntriesOf(folder / kTlsFolderName)) {
      CheckTlsFolder(path);
    }
  }

 private:
  // "osprey" in the place of "Osprey" would be connected without a handshake.
  void CheckName(const fs::path& path) {
    const std::string name = path.stem().string();
    const auto other = std::find_if(models_.begin(), models_.end(), [&name](const auto& model) {
      return model != name && InSmallLetters(model) == InSmallLetters(name);
    });
    if (other != models_.end() && !(IsOther(name) && IsOther(*other))) {
      faults_.push_back({0,
                         path.string() + ": " + Quoted(name) + " is another model than " +
                             Quoted(*other) + ", and what other tables say of that does not " +
                             "count for it; if it is to stand in the place of that, rename it",
                         TableFault::Severity::kWarning, path.string()});
    }
  }

  // A misspelt authority would be none, and whoever answers would be asked about.
  void CheckTlsFolder(const fs::path& folder) {
    const std::string name = folder.filename().string();
    if (IsOther(name)) {
      return;
    }
    for (const fs::path& path : EntriesOf(folder)) {
      if (!IsModel(name)) {
        Warn(path, "no model is called " + Quoted(name));
      } else if (std::find(kTlsFileNames.begin(), kTlsFileNames.end(), path.filename()) ==
                 kTlsFileNames.end()) {
        Warn(path, "the files here are called ca.pem, cert.pem and key.pem");
      }
    }
  }

  void CheckMonitorTables(const fs::path& folder) {
    const std::string name = folder.filename().string();
    if (IsOther(name)) {
      return;
    }
    const bool is_model = IsModel(name);
    for (const fs::path& path : EntriesOf(folder)) {
      if (EndingOf(path) != ".csv") {
        continue;
      }
      if (!is_model) {
        Warn(path, "no model is called " + Quoted(name));
      } else if (MonitorVersionOf(path.filename().string()).empty()) {
        Warn(path, "a monitor table is called Monitor_, its version, and .csv");
      }
    }
  }

  bool IsOther(const std::string& name) const { return !model_.empty() && name != model_; }
  bool IsModel(const std::string& name) const {
    return std::binary_search(models_.begin(), models_.end(), name);
  }

  void Warn(const fs::path& path, const std::string& reason) {
    faults_.push_back({0, path.string() + ": this file is not read: " + reason + "; rename it",
                       TableFault::Severity::kWarning, path.string()});
  }

  const std::vector<std::string> models_;
  const std::string model_;
  TableFaults& faults_;
};

}  // namespace

void CheckStrayFiles(const ConfigFolder& folder, const std::string& model, TableFaults* faults) {
  StrayFiles stray(folder, model, faults);
  for (const ConfigLayer& layer : folder.layers()) {
    stray.Check(layer);
  }
}
