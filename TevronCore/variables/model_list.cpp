#include "variables/model_list.h"

#include <algorithm>
#include <filesystem>

std::vector<std::string> ListModels(const std::string& folder) {
  std::vector<std::string> models;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    if (entry->path().extension() == ".csv" && entry->is_regular_file(ignored)) {
      models.push_back(entry->path().stem().string());
    }
  }
  std::sort(models.begin(), models.end());
  return models;
}
