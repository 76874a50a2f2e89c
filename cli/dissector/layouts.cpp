#include "dissector/layouts.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

#include "Wire/file_piece.h"
#include "variables/log_variables.h"

namespace {

using Fields = std::vector<const VarInfo*>;

const Page* PageOf(const PageModel& pages, const VarInfo& var) {
  const PagePosition place = pages.PositionOf(var);
  return place.valid() ? &pages.pages()[static_cast<size_t>(place.level1)] : nullptr;
}

/// What is read or written together is mostly a page, or a part of one.
struct Name {
  std::string brief;  ///< "Scan", or the only variable
  std::string exact;  ///< "Scan (Head, Range)"
};

constexpr size_t kMostParts = 3;

// The rows of a monitor table have captions of their own by chance: its ids are counted anew.
Name NameOf(const Fields& fields, const LidarModel& model) {
  const PageModel& pages = model.pages;
  Fields shown;
  std::copy_if(fields.begin(), fields.end(), std::back_inserter(shown),
               [&pages](const VarInfo* var) { return PageOf(pages, *var) != nullptr; });
  const VarInfo& first = *(shown.empty() ? fields : shown).front();
  const Page* const page = PageOf(pages, first);
  if (shown.size() == 1 || page == nullptr) {
    return {first.var_name, first.var_name};
  }
  std::vector<std::string> parts;
  for (const VarInfo* var : shown) {
    const PagePosition place = pages.PositionOf(*var);
    const auto& group =
        pages.pages()[static_cast<size_t>(place.level1)].groups[static_cast<size_t>(place.level2)];
    const bool has_caption = model.table->IsOwn(*var) && !group.caption.empty();
    const std::string part = has_caption ? group.caption : var->var_name;
    if (std::find(parts.begin(), parts.end(), part) == parts.end()) {
      parts.push_back(part);
    }
  }
  std::string joined;
  for (size_t i = 0; i < std::min(parts.size(), kMostParts); ++i) {
    joined += (i == 0 ? "" : ", ") + parts[i];
  }
  joined += parts.size() > kMostParts ? ", ..." : "";
  return {page->name, page->name + " (" + joined + ")"};
}

/// Collects the layouts of one model, its monitor tables behind its own.
class Collector {
 public:
  void Take(const LidarModel& model, const std::string& version);
  std::vector<Layout> Finish();

 private:
  void TakeSide(const LidarModel& model, const Fields& fields, const FieldGroup* VarInfo::*side,
                const std::string& version);
  void TakeDownload(const VarInfo& var);

  std::vector<std::pair<Layout, Name>> layouts_;
};

Fields Downloads(const ConfigParser& table) {
  Fields downloads = OfferedLogs(table);
  for (const char* name : {kOperationLog, kConfigFile}) {
    const VarInfo* const var = table.FindByName(name);
    if (var != nullptr && std::find(downloads.begin(), downloads.end(), var) == downloads.end()) {
      downloads.push_back(var);
    }
  }
  return downloads;
}

void Collector::Take(const LidarModel& model, const std::string& version) {
  const Fields downloads = Downloads(*model.table);
  Fields fields;
  for (const VarInfo* var : model.table->InTableOrder()) {
    const bool is_wanted = model.table->IsOwn(*var) == version.empty();
    if (is_wanted && std::find(downloads.begin(), downloads.end(), var) == downloads.end()) {
      fields.push_back(var);
    }
  }
  TakeSide(model, fields, &VarInfo::read, version);
  TakeSide(model, fields, &VarInfo::write, version);
  if (version.empty()) {
    std::for_each(downloads.begin(), downloads.end(),
                  [this](const VarInfo* var) { TakeDownload(*var); });
  }
}

void Collector::TakeSide(const LidarModel& model, const Fields& fields,
                         const FieldGroup* VarInfo::*side, const std::string& version) {
  std::vector<std::pair<const FieldGroup*, Fields>> groups;
  for (const VarInfo* var : fields) {
    const FieldGroup* const group = var->*side;
    if (group == nullptr) {
      continue;
    }
    auto known = std::find_if(groups.begin(), groups.end(),
                              [group](const auto& entry) { return entry.first == group; });
    if (known == groups.end()) {
      known = groups.insert(groups.end(), {group, {}});
    }
    known->second.push_back(var);
  }
  const bool is_read = side == &VarInfo::read;
  for (const auto& [group, members] : groups) {
    const std::string& command = is_read ? members[0]->get_cmd : members[0]->set_cmd;
    try {
      Layout layout{is_read ? "Read" : "Write",
                    {},
                    WireCommandOf(command, group->fixed_payload),
                    static_cast<size_t>(group->length),
                    version,
                    false,
                    members};
      layouts_.emplace_back(std::move(layout), NameOf(members, model));
    } catch (const std::logic_error&) {
      continue;  // no command: told when the table was loaded
    }
  }
}

void Collector::TakeDownload(const VarInfo& var) {
  try {
    const bool has_parts = var.var_name == kOperationLog;
    layouts_.emplace_back(
        Layout{"Download", {}, DownloadRequestOf(var, var.var_name), 0, {}, has_parts, {}},
        Name{var.var_name, var.var_name});
  } catch (const std::invalid_argument&) {
    return;  // as above
  }
}

std::vector<Layout> Collector::Finish() {
  std::map<std::pair<std::string, std::string>, int> brief_names;
  for (const auto& [layout, name] : layouts_) {
    ++brief_names[{layout.verb, layout.version.empty() ? name.brief : name.exact}];
  }
  std::vector<Layout> finished;
  for (auto& [layout, name] : layouts_) {
    const bool is_alone = layout.version.empty() && brief_names[{layout.verb, name.brief}] == 1;
    layout.name = is_alone ? name.brief : name.exact;
    finished.push_back(std::move(layout));
  }
  return finished;
}

}  // namespace

std::vector<Layout> LayoutsOf(const DissectedModel& dissected) {
  Collector collector;
  collector.Take(*dissected.model, {});
  for (const auto& monitor : dissected.monitors) {
    collector.Take(*monitor, monitor->monitor_version);
  }
  return collector.Finish();
}

uint8_t FirmwareCodeOf(const ConfigParser& table) {
  for (const VarInfo* var : table.InTableOrder()) {
    if (var->type == kFile && !var->set_cmd.empty()) {
      try {
        return WireCommandOf(var->set_cmd).code;
      } catch (const std::logic_error&) {
        break;  // told when the table was loaded
      }
    }
  }
  return kavel::lidar::kCmdFirmwarePiece;
}
