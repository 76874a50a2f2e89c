#include "page_rows.h"

#include <QRegularExpression>
#include <algorithm>
#include <functional>

#include "CmxClient/fov_command.h"
#include "input_rules.h"
#include "variables/command_code.h"

namespace {

// What stands at `place` of a list, or nothing.
QVariant At(const QVariantList& list, int place) {
  return place >= 0 && place < list.size() ? list.at(place) : QVariant();
}

QVariantList ListOf(const QObject* manager, const char* property) {
  return manager == nullptr ? QVariantList() : manager->property(property).toList();
}

}  // namespace

int PageRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant PageRows::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
    return {};
  }
  const Row& row = rows_[static_cast<size_t>(index.row())];
  switch (role) {
    case kCaptionRole:
      return row.caption;
    case kKindRole:
      return row.kind;
    case kLevel1Role:
      return row.level1;
    case kLevel2Role:
      return row.level2;
    case kLevel3Role:
      return row.level3;
    case kLeafRole:
      return row.leaf;
    case kHeadingRole:
      return row.heading;
    default:
      return {};
  }
}

QHash<int, QByteArray> PageRows::roleNames() const {
  return {{kCaptionRole, "caption"}, {kKindRole, "kind"},     {kLevel1Role, "level1"},
          {kLevel2Role, "level2"},   {kLevel3Role, "level3"}, {kLeafRole, "leaf"},
          {kHeadingRole, "heading"}};
}

void PageRows::SetManager(QObject* manager) {
  if (manager_ != manager) {
    manager_ = manager;
    emit managerChanged();
    Rebuild();
  }
}

void PageRows::SetPage(int page) {
  if (page_ != page) {
    page_ = page;
    emit pageChanged();
    Rebuild();
  }
}

QString PageRows::description() const {
  return rows_.empty() ? QString() : rows_.front().leaf.value("page_description").toString();
}

void PageRows::Search(const QString& text, bool only_edited, bool only_changed) {
  const QString folded = text.toCaseFolded();
  TakeCandidates(ListOf(manager_, "level2List"), ListOf(manager_, "myMap"));
  search_ = {folded.split(QRegularExpression("\\s+"), Qt::SkipEmptyParts), only_edited,
             only_changed};
  Rebuild();
}

void PageRows::Rebuild() {
  const QVariantList map = ListOf(manager_, "myMap");
  const QVariantList pages = ListOf(manager_, "level2List");
  beginResetModel();
  rows_.clear();
  found_count_ = 0;
  if (page_ == kEveryPage) {
    if (search_.AsksForAny()) {
      LookThrough(pages, map);
    }
  } else {
    for (const QVariant& entry : At(pages, page_).toList()) {
      Row row = RowOf(entry.toList(), map);
      row.heading = row.leaf.value("group_caption").toString();
      row.starts_group = rows_.empty() || rows_.back().level2 != row.level2;
      rows_.push_back(std::move(row));
    }
  }
  endResetModel();
  emit rebuilt();
  emit taken();
}

void PageRows::TakeCandidates(const QVariantList& pages, const QVariantList& map) {
  if (pages == candidate_pages_) {
    return;
  }
  candidates_.clear();
  candidate_pages_ = pages;
  for (const QVariant& page : pages) {
    for (const QVariant& entry : page.toList()) {
      const Row row = RowOf(entry.toList(), map);
      candidates_.push_back({row, RowSearch::TextOf(row.caption, row.leaf)});
    }
  }
}

// Whoever types asks again and again: a text is only made anew where a variable has changed.
void PageRows::LookThrough(const QVariantList& pages, const QVariantList& map) {
  TakeCandidates(pages, map);
  for (Candidate& candidate : candidates_) {
    Row& row = candidate.row;
    QVariantMap leaf = LeafOf(map, row);
    if (leaf != row.leaf) {
      row.leaf = std::move(leaf);
      candidate.text = RowSearch::TextOf(row.caption, row.leaf);
    }
    if (search_.Finds(row.leaf, candidate.text) && ++found_count_ <= kMostFound) {
      rows_.push_back(row);
      rows_.back().heading = row.leaf.value("page").toString();
      rows_.back().starts_group = rows_.size() == 1 || rows_[rows_.size() - 2].level1 != row.level1;
    }
  }
}

PageRows::Row PageRows::RowOf(const QVariantList& cells, const QVariantList& map) const {
  Row row{At(cells, 0).toString(),
          QString(),
          At(cells, 1).toInt(),
          At(cells, 2).toInt(),
          At(cells, 3).toInt(),
          At(cells, 4).toInt(),
          false,
          QVariantMap()};
  row.leaf = LeafOf(map, row);
  const QString unit = row.leaf.value("unit_suffix").toString();
  if (row.caption.endsWith(unit)) {
    row.caption.chop(unit.size());
  }
  return row;
}

void PageRows::TakeAll() {
  const QVariantList map = ListOf(manager_, "myMap");
  for (int row = 0; row < count(); ++row) {
    Take(row, map);
  }
  emit taken();
}

void PageRows::TakeTimed() {
  const QVariantList map = ListOf(manager_, "myMap");
  for (int row = 0; row < count(); ++row) {
    const QVariantMap& leaf = rows_[static_cast<size_t>(row)].leaf;
    if (leaf.value("timer_update").toBool() || leaf.value("state", "read") != "read") {
      Take(row, map);
    }
  }
  emit taken();
}

void PageRows::TakeRow(int row) {
  Take(row, ListOf(manager_, "myMap"));
  emit taken();
}

bool PageRows::Row::IsEdited() const { return leaf.value("edited").toBool(); }

bool PageRows::Row::IsFaulty() const {
  return IsEdited() && ProblemOfLeaf(leaf, leaf.value("current_val").toString()).kind ==
                           InputProblem::Kind::kImpossible;
}

int PageRows::editCount() const {
  return static_cast<int>(std::count_if(rows_.begin(), rows_.end(), std::mem_fn(&Row::IsEdited)));
}

int PageRows::faultCount() const {
  return static_cast<int>(std::count_if(rows_.begin(), rows_.end(), std::mem_fn(&Row::IsFaulty)));
}

int PageRows::FirstFault() const {
  const auto row = std::find_if(rows_.begin(), rows_.end(), std::mem_fn(&Row::IsFaulty));
  return row == rows_.end() ? -1 : static_cast<int>(row - rows_.begin());
}

int PageRows::FirstFov() const {
  const auto row = std::find_if(rows_.begin(), rows_.end(), [](const Row& one) {
    return IsCommand(one.leaf.value("set_cmd").toString().toStdString(), kavel::lidar::kFovCommand);
  });
  return row == rows_.end() ? -1 : static_cast<int>(row - rows_.begin());
}

QVariantMap PageRows::FovLeaf() const {
  const int row = FirstFov();
  return row < 0 ? QVariantMap() : rows_[static_cast<size_t>(row)].leaf;
}

int PageRows::RowAt(int level1, int level2, int level3) const {
  const auto row = std::find_if(rows_.begin(), rows_.end(), [=](const Row& one) {
    return one.level1 == level1 && one.level2 == level2 && one.level3 == level3;
  });
  return row == rows_.end() ? -1 : static_cast<int>(row - rows_.begin());
}

QVariantMap PageRows::LeafAt(int level1, int level2, int level3) const {
  const int row = RowAt(level1, level2, level3);
  return row < 0 ? QVariantMap() : rows_[static_cast<size_t>(row)].leaf;
}

QVariantList PageRows::Edits() const {
  QVariantList edits;
  for (const Row& row : rows_) {
    if (row.IsEdited()) {
      edits.append(QVariantMap{{"level1", row.level1},
                               {"level2", row.level2},
                               {"level3", row.level3},
                               {"text", row.leaf.value("current_val")}});
    }
  }
  return edits;
}

QVariantList PageRows::Shape() const {
  QVariantList shape;
  for (const Row& row : rows_) {
    shape.append(QVariantMap{
        {"kind", row.kind}, {"starts", row.starts_group}, {"captioned", !row.heading.isEmpty()}});
  }
  return shape;
}

bool PageRows::HasKind(int kind) const { return FirstOfKind(kind) != rows_.end(); }

QVariantMap PageRows::LeafOfKind(int kind) const {
  const auto row = FirstOfKind(kind);
  return row == rows_.end() ? QVariantMap() : row->leaf;
}

std::vector<PageRows::Row>::const_iterator PageRows::FirstOfKind(int kind) const {
  return std::find_if(rows_.begin(), rows_.end(),
                      [kind](const Row& row) { return row.kind == kind; });
}

QVariantMap PageRows::LeafOf(const QVariantList& map, const Row& row) const {
  return At(At(At(map, row.level1).toList(), row.level2).toList(), row.level3).toMap();
}

void PageRows::Take(int row, const QVariantList& map) {
  Row& shown = rows_[static_cast<size_t>(row)];
  QVariantMap leaf = LeafOf(map, shown);
  if (leaf != shown.leaf) {
    shown.leaf = std::move(leaf);
    emit dataChanged(index(row), index(row), {kLeafRole});
  }
}
