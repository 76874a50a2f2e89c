#include "variables/config_folder.h"

#include <QDir>
#include <QStandardPaths>
#include <algorithm>
#include <filesystem>

#include "variables/fault_list.h"
#include "variables/model_list.h"

namespace {

namespace fs = std::filesystem;

using Owner = ConfigLayer::Owner;

/// A link to nothing is something that cannot be read, not something that nobody wanted. So is what
/// lies where nobody may look.
bool IsThere(const std::string& path) {
  std::error_code ignored;
  return fs::symlink_status(path, ignored).type() != fs::file_type::not_found;
}

/// Whether there is something by this name, be it a link to nothing; not where nobody may look.
bool HasName(const std::string& path) {
  std::error_code error;
  return fs::exists(fs::symlink_status(path, error));
}

/// Whether there is a file that stands in folders of `layer`, or would if a link on the way to it,
/// as to a disk that is not there, led anywhere.
bool MayBeThere(const std::string& layer, const fs::path& name) {
  std::error_code ignored;
  fs::path path = layer;
  for (const fs::path& part : name) {
    path /= part;
    if (HasName(path.string()) && !fs::exists(path, ignored)) {
      return true;
    }
  }
  return IsThere(path.string());
}

/// The folder in which all programs of the user keep their configuration. A relative
/// XDG_CONFIG_HOME counts for nothing: what is read from there would be whatever the current folder
/// holds.
QString UserConfigRoot() {
  const QString root = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return QDir::isAbsolutePath(root) ? root : QDir::homePath() + QStringLiteral("/.config");
}

}  // namespace

std::string AbsolutePath(const std::string& path) {
  std::error_code error;
  const fs::path whole = fs::weakly_canonical(path, error);
  return error ? path : whole.string();
}

std::string ProgramConfigFolder() {
  std::error_code ignored;
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
  const fs::path folder = program.parent_path();
  const fs::path usual = folder.parent_path() / "Config";
  const fs::path flat = folder / "Config";
  const bool is_flat = !fs::is_directory(usual, ignored) && fs::is_directory(flat, ignored);
  return (is_flat ? flat : usual).string();
}

bool ConfigLayer::is_folder() const {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

ConfigFolder::ConfigFolder(const std::string& path)
    : layers_{{Owner::kProgram, path}, {Owner::kSite, path + "/site"}} {}

ConfigFolder ConfigFolder::OfProgram() {
  ConfigFolder config(ProgramConfigFolder());
  config.AddUser();
  return config;
}

ConfigFolder ConfigFolder::Of(const std::string& table_path) {
  const auto upwards = [](fs::path path) {
    path = path.parent_path();
    return path.empty() ? fs::path(".") : path;
  };
  const fs::path folder = upwards(upwards(table_path));
  ConfigFolder config((folder.filename() == "site" ? upwards(folder) : folder).string());
  if (AbsolutePath(config.path()) == AbsolutePath(ProgramConfigFolder())) {
    config.AddUser();
  }
  return config;
}

void ConfigFolder::AddUser() {
  const std::string path = UserConfigRoot().toStdString() + "/Tevron/Config";
  std::error_code ignored;
  if (fs::symlink_status(path, ignored).type() != fs::file_type::none) {
    layers_.push_back({Owner::kUser, path});
  }
}

std::vector<std::string> ConfigFolder::Models() const {
  std::vector<std::string> models;
  for (const ConfigLayer& layer : layers_) {
    const std::vector<std::string> more = ListModels(layer.path + "/varID");
    models.insert(models.end(), more.begin(), more.end());
  }
  std::sort(models.begin(), models.end());
  models.erase(std::unique(models.begin(), models.end()), models.end());
  return models;
}

std::string ConfigFolder::TableOf(const std::string& model) const {
  const std::string below = "/varID/" + model + ".csv";
  const auto last =
      std::find_if(layers_.rbegin(), layers_.rend(),
                   [&below](const ConfigLayer& layer) { return HasName(layer.path + below); });
  return (last == layers_.rend() ? path() : last->path) + below;
}

std::string ConfigFolder::Describe(const std::string& model) const {
  std::string line = model + " is described by " + AbsolutePath(TableOf(model));
  for (const ConfigLayer& layer : layers_) {
    if (layer.owner != Owner::kProgram && layer.is_folder()) {
      line += layer.owner == Owner::kSite ? "; tables of this site are read from "
                                          : "; tables of your own are read from ";
      line += AbsolutePath(layer.path);
    }
  }
  return line;
}

std::vector<std::string> ConfigFolder::FilesCalled(const std::string& name) const {
  std::vector<std::string> files;
  for (const ConfigLayer& layer : layers_) {
    if (MayBeThere(layer.path, name)) {
      files.push_back(layer.path + '/' + name);
    }
  }
  return files;
}

void ConfigFolder::CheckLayers(TableFaults* faults) const {
  for (const ConfigLayer& layer : layers_) {
    for (const std::string& folder : {layer.path, layer.path + "/varID"}) {
      std::error_code error;
      if (!IsThere(folder) || (fs::directory_iterator(folder, error), !error)) {
        continue;
      }
      FaultList found(folder);
      found.Fault(0, "no table is read from here: " + error.message() +
                         "; make it a folder that you can read, or remove it");
      found.MoveTo(faults);
      break;
    }
  }
}
