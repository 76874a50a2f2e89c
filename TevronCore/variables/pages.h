#pragma once

#include <string>
#include <vector>

#include "variables/config_parser.h"

/// The directive that gives a page the line under its title.
inline constexpr char kPageDirective[] = "page";

/// The directive that gives the rows of one GroupID a caption.
inline constexpr char kGroupDirective[] = "group";

/// A page of the screens: the variables with one "FunctionModule" text.
struct Page {
  struct Group {
    std::string id;       ///< "GroupID" text.
    std::string caption;  ///< From the table's "group" directive; may be empty.
    std::vector<const VarInfo*> vars;
  };
  std::string name;
  std::string description;  ///< From the table's "page" directive; may be empty.
  std::vector<Group> groups;
};

/// Place of a variable on the pages: page, group in the page, variable in the group; all from 0.
struct PagePosition {
  int level1 = -1;
  int level2 = -1;
  int level3 = -1;
  bool valid() const { return level1 >= 0; }
};

/// How the variables of a table are spread over the pages. Pages, groups and variables stand in the
/// order of their first appearance in the table. Hidden variables and those without a page are left
/// out, so that the positions here are those of the screens.
///
/// Immutable; refers to the parser's variables and must not outlive their loading.
class PageModel {
 public:
  PageModel() = default;
  explicit PageModel(const ConfigParser& parser);

  const std::vector<Page>& pages() const { return pages_; }
  int page_count() const { return static_cast<int>(pages_.size()); }

  /// The page that holds the monitor control; -1 without one.
  int monitor_page() const { return monitor_page_; }

  /// The variable at a position; null when there is none.
  const VarInfo* At(int level1, int level2, int level3) const;

  /// Position of a variable of the table, not valid() when no page shows it.
  PagePosition PositionOf(const VarInfo& var) const;

  /// All variables of a page in page order; empty for an index out of range.
  std::vector<const VarInfo*> VariablesOf(int page) const;

 private:
  void TakeDirectives(const ConfigParser& parser);

  std::vector<Page> pages_;
  std::vector<PagePosition> positions_;  // by VarInfo::table_position
  int monitor_page_ = -1;
};
