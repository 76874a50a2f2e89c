#include "variables/config_folder.h"

#include <algorithm>
#include <filesystem>

#include "variables/model_list.h"

namespace {

bool IsFile(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

}  // namespace

std::string AbsolutePath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path whole = std::filesystem::weakly_canonical(path, error);
  return error ? path : whole.string();
}

std::string ProgramConfigFolder() {
  std::error_code ignored;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", ignored);
  const std::filesystem::path folder = program.parent_path();
  const std::filesystem::path usual = folder.parent_path() / "Config";
  const std::filesystem::path flat = folder / "Config";
  const bool is_flat = !std::filesystem::is_directory(usual, ignored) &&
                       std::filesystem::is_directory(flat, ignored);
  return (is_flat ? flat : usual).string();
}

ConfigFolder ConfigFolder::Of(const std::string& table_path) {
  const auto upwards = [](std::filesystem::path path) {
    path = path.parent_path();
    return path.empty() ? std::filesystem::path(".") : path;
  };
  const std::filesystem::path folder = upwards(upwards(table_path));
  return ConfigFolder((folder.filename() == "site" ? upwards(folder) : folder).string());
}

bool ConfigFolder::has_site() const {
  std::error_code ignored;
  return std::filesystem::is_directory(site_path(), ignored);
}

std::vector<std::string> ConfigFolder::Models() const {
  std::vector<std::string> models = ListModels(path_ + "/varID");
  const std::vector<std::string> own = ListModels(site_path() + "/varID");
  models.insert(models.end(), own.begin(), own.end());
  std::sort(models.begin(), models.end());
  models.erase(std::unique(models.begin(), models.end()), models.end());
  return models;
}

std::string ConfigFolder::TableOf(const std::string& model) const {
  const std::string below = "/varID/" + model + ".csv";
  const std::string own = site_path() + below;
  return IsFile(own) ? own : path_ + below;
}

std::string ConfigFolder::Describe(const std::string& model) const {
  const std::string table = model + " is described by " + AbsolutePath(TableOf(model));
  return has_site() ? table + "; tables of this site are read from " + AbsolutePath(site_path())
                    : table;
}

std::vector<std::string> ConfigFolder::FilesCalled(const std::string& name) const {
  std::vector<std::string> files;
  for (const std::string& folder : {path_, site_path()}) {
    const std::string file = std::string(folder).append(1, '/').append(name);
    std::error_code ignored;
    // A link to nothing is a file that cannot be read, not one that nobody wanted.
    if (std::filesystem::symlink_status(file, ignored).type() !=
        std::filesystem::file_type::not_found) {
      files.push_back(file);
    }
  }
  return files;
}
