#include "variables/pages.h"

#include <string_view>
#include <unordered_map>

namespace {

bool Fits(int index, size_t size) { return index >= 0 && static_cast<size_t>(index) < size; }

}  // namespace

PageModel::PageModel(const ConfigParser& parser) {
  if (!parser.InTableOrder().empty()) {
    positions_.resize(parser.InTableOrder().back()->table_position + 1);
  }
  std::unordered_map<std::string_view, size_t> page_of_name;
  std::vector<std::unordered_map<std::string_view, size_t>> group_of_id;  // per page
  for (const VarInfo* var : parser.InTableOrder()) {
    if (var->hidden || var->function_module.empty()) {
      continue;
    }
    const auto [page_entry, new_page] =
        page_of_name.try_emplace(var->function_module, pages_.size());
    if (new_page) {
      pages_.push_back({var->function_module, {}, {}});
      group_of_id.emplace_back();
    }
    const size_t page_index = page_entry->second;
    std::vector<Page::Group>& groups = pages_[page_index].groups;
    const auto [group_entry, new_group] =
        group_of_id[page_index].try_emplace(GroupIdOf(*var), groups.size());
    if (new_group) {
      groups.push_back({std::string(GroupIdOf(*var)), {}, {}});
    }
    std::vector<const VarInfo*>& vars = groups[group_entry->second].vars;
    positions_[var->table_position] = {static_cast<int>(page_index),
                                       static_cast<int>(group_entry->second),
                                       static_cast<int>(vars.size())};
    vars.push_back(var);
    if (var->type == kMonitor && monitor_page_ < 0) {
      monitor_page_ = static_cast<int>(page_index);
    }
  }
  TakeDirectives(parser);
}

// A group whose variables stand on several pages has its caption on each of them.
void PageModel::TakeDirectives(const ConfigParser& parser) {
  std::unordered_map<std::string_view, std::string_view> descriptions;
  std::unordered_map<std::string_view, std::string_view> captions;
  for (const TableDirective& directive : parser.Directives()) {
    const std::vector<std::string>& cells = directive.cells;
    if (cells.size() < 3) {
      continue;
    }
    if (directive.name() == kPageDirective) {
      descriptions[cells[1]] = cells[2];
    } else if (directive.name() == kGroupDirective) {
      captions[cells[1]] = cells[2];
    }
  }
  for (Page& page : pages_) {
    page.description = descriptions[page.name];
    for (Page::Group& group : page.groups) {
      group.caption = captions[group.id];
    }
  }
}

const VarInfo* PageModel::At(int level1, int level2, int level3) const {
  if (!Fits(level1, pages_.size())) {
    return nullptr;
  }
  const std::vector<Page::Group>& groups = pages_[static_cast<size_t>(level1)].groups;
  if (!Fits(level2, groups.size())) {
    return nullptr;
  }
  const std::vector<const VarInfo*>& vars = groups[static_cast<size_t>(level2)].vars;
  return Fits(level3, vars.size()) ? vars[static_cast<size_t>(level3)] : nullptr;
}

PagePosition PageModel::PositionOf(const VarInfo& var) const {
  return var.table_position < positions_.size() ? positions_[var.table_position] : PagePosition();
}

std::vector<const VarInfo*> PageModel::VariablesOf(int page) const {
  std::vector<const VarInfo*> vars;
  if (Fits(page, pages_.size())) {
    for (const Page::Group& group : pages_[static_cast<size_t>(page)].groups) {
      vars.insert(vars.end(), group.vars.begin(), group.vars.end());
    }
  }
  return vars;
}
