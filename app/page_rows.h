#pragma once

#include <QAbstractListModel>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>
#include <vector>

#include "row_search.h"

/// The rows of one page, or those of all pages that a search finds, with the variable that each of
/// them shows. They are taken from the manager's "level2List" and "myMap" when that is asked for,
/// and only rows whose variable differs from what they show announce a change. What was found stays
/// until it is searched again, whatever becomes of its values. GUI thread only.
class PageRows : public QAbstractListModel {
  Q_OBJECT
  /// The object with the two properties; may be null, and there are no rows then.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY managerChanged)
  /// Which page, from 0, or kEveryPage; there are no rows for a page that does not exist.
  Q_PROPERTY(int page READ page WRITE SetPage NOTIFY pageChanged)
  Q_PROPERTY(int count READ count NOTIFY rebuilt)
  /// How many rows the search found; more than `count` where it found more than kMostFound.
  Q_PROPERTY(int foundCount READ found_count NOTIFY rebuilt)
  /// The line under the page's title; empty without one.
  Q_PROPERTY(QString description READ description NOTIFY rebuilt)
  /// How many values were edited, and how many of them have to be corrected before a Save.
  Q_PROPERTY(int editCount READ editCount NOTIFY taken)
  Q_PROPERTY(int faultCount READ faultCount NOTIFY taken)

 public:
  enum Role {
    kCaptionRole = Qt::UserRole + 1,  ///< "caption", without the unit
    kKindRole,                        ///< "kind": the row kind, see the manager's level2List
    kLevel1Role,                      ///< "level1", "level2", "level3": the place in myMap
    kLevel2Role,
    kLevel3Role,
    kLeafRole,     ///< "leaf": the fields of the variable; empty where myMap has no such place
    kHeadingRole,  ///< "heading": what stands above the group; of what was found, the page
  };

  static constexpr int kEveryPage = -1;
  /// Who has to look through more rows than these asks for too much.
  static constexpr int kMostFound = 200;

  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  QObject* manager() const { return manager_; }
  void SetManager(QObject* manager);
  int page() const { return page_; }
  void SetPage(int page);
  int count() const { return static_cast<int>(rows_.size()); }
  int found_count() const { return found_count_; }
  QString description() const;
  int editCount() const;
  int faultCount() const;

  /// Shows what is found on all pages, where `page` is kEveryPage. `text` holds the words.
  Q_INVOKABLE void Search(const QString& text, bool only_edited, bool only_changed);
  /// Builds the rows anew: for another page, model or monitor table.
  Q_INVOKABLE void Rebuild();
  /// Takes the variables of all rows.
  Q_INVOKABLE void TakeAll();
  /// Takes the variables that the periodic refresh renews, and those whose row shows something else
  /// than a reading; the others wait for TakeAll.
  Q_INVOKABLE void TakeTimed();
  /// Takes the variable of row `row`, which has to exist.
  Q_INVOKABLE void TakeRow(int row);
  /// The edits of the page as it was last taken: maps with "level1", "level2", "level3" and "text".
  Q_INVOKABLE QVariantList Edits() const;
  /// The first row whose edited text cannot be saved; -1 without one.
  Q_INVOKABLE int FirstFault() const;
  /// The row of the field-of-view table, -1 without one, and its variable.
  Q_INVOKABLE int FirstFov() const;
  Q_INVOKABLE QVariantMap FovLeaf() const;
  /// The row that stands at this place, -1 without one; and its variable, empty without one.
  Q_INVOKABLE int RowAt(int level1, int level2, int level3) const;
  Q_INVOKABLE QVariantMap LeafAt(int level1, int level2, int level3) const;
  /// What the layout of the page depends on: for each row a map with "kind", whether it "starts" a
  /// group, and whether that is "captioned".
  Q_INVOKABLE QVariantList Shape() const;
  /// Whether a row of this kind is on the page.
  Q_INVOKABLE bool HasKind(int kind) const;
  /// The variable of the first row of this kind as it was last taken; empty without such a row.
  Q_INVOKABLE QVariantMap LeafOfKind(int kind) const;

 signals:
  void managerChanged();
  void pageChanged();
  void rebuilt();
  /// The variables of some rows were taken.
  void taken();

 private:
  struct Row {
    QString caption;
    QString heading;
    int kind;
    int level1, level2, level3;
    bool starts_group;
    QVariantMap leaf;

    bool IsEdited() const;
    bool IsFaulty() const;
  };

  /// A row that can be found, and the text that it is found by.
  struct Candidate {
    Row row;
    QString text;
  };

  void TakeCandidates(const QVariantList& pages, const QVariantList& map);
  void LookThrough(const QVariantList& pages, const QVariantList& map);
  Row RowOf(const QVariantList& cells, const QVariantList& map) const;
  std::vector<Row>::const_iterator FirstOfKind(int kind) const;
  QVariantMap LeafOf(const QVariantList& map, const Row& row) const;
  void Take(int row, const QVariantList& map);

  QPointer<QObject> manager_;
  int page_ = 0;
  RowSearch search_;
  int found_count_ = 0;
  QVariantList candidate_pages_;  ///< the "level2List" that the candidates were taken from
  std::vector<Candidate> candidates_;
  std::vector<Row> rows_;
};
