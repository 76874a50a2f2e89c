#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QStringList>
#include <memory>
#include <unordered_set>
#include <vector>

#include "settings_files/settings_comparison.h"

/// The rows of a comparison of settings that are in view, and the ticks of those that are to be
/// applied. A row that is filtered away keeps its tick. GUI thread only.
class SettingsRows : public QAbstractListModel {
  Q_OBJECT
  /// Rows in view, and all of them.
  Q_PROPERTY(int count READ count NOTIFY changed)
  Q_PROPERTY(int total READ total NOTIFY changed)
  /// Words that each stand in the name, the page or a value of the rows in view.
  Q_PROPERTY(QString filter READ filter WRITE SetFilter NOTIFY changed)
  Q_PROPERTY(bool onlyDiffering READ only_differing WRITE SetOnlyDiffering NOTIFY changed)
  Q_PROPERTY(bool onlyWritable READ only_writable WRITE SetOnlyWritable NOTIFY changed)
  /// Whether what is only applied on demand can be ticked.
  Q_PROPERTY(bool withNetwork READ with_network WRITE SetWithNetwork NOTIFY changed)
  /// Whether there is something that is only applied on demand.
  Q_PROPERTY(bool offersNetwork READ offers_network NOTIFY changed)
  /// Rows that can be ticked now, and those of them that are.
  Q_PROPERTY(int choiceCount READ choice_count NOTIFY changed)
  Q_PROPERTY(int tickedCount READ ticked_count NOTIFY changed)
  /// "12 differ · 3 only in the file · 2 unread"; of settings alone, without the readings.
  Q_PROPERTY(QString summary READ summary NOTIFY changed)
  /// Whether every setting is the same on both sides.
  Q_PROPERTY(bool equal READ equal NOTIFY changed)

 public:
  enum Role {
    kNameRole = Qt::UserRole + 1,  ///< "name"
    kPageRole,                     ///< "page": empty for what no page shows
    kUnitRole,                     ///< "unit"
    kLeftRole,                     ///< "left", "right": the values; empty where there is none
    kRightRole,
    kKindRole,      ///< "kind": "equal", "differs", "left", "right" or "unread"
    kWritableRole,  ///< "writable": a setting, and no reading
    kChoiceRole,    ///< "tickable": whether the tick can be set now
    kTickedRole,    ///< "ticked"
    kOutcomeRole,  ///< "outcome": what became of it when it was applied, or why it cannot be; a few
                   ///< words, or none
    kToneRole,     ///< "tone": of these words, "good", "bad" or "quiet"
  };

  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// Shows another comparison, which may be null. Everything that may be applied is ticked when
  /// `ticked` is true.
  void Show(std::shared_ptr<const SettingsComparison> comparison, bool ticked);
  /// The same rows with other outcomes and values: filter, toggles and places stay, and what is
  /// ticked unless it is not to be applied any more.
  void Renew(std::shared_ptr<const SettingsComparison> comparison);
  /// The names of the ticked rows.
  std::vector<std::string> Ticked() const;

  int count() const { return static_cast<int>(shown_.size()); }
  int total() const { return static_cast<int>(rows().size()); }
  const QString& filter() const { return filter_; }
  void SetFilter(const QString& filter);
  bool only_differing() const { return only_differing_; }
  void SetOnlyDiffering(bool on);
  bool only_writable() const { return only_writable_; }
  void SetOnlyWritable(bool on);
  bool with_network() const { return with_network_; }
  void SetWithNetwork(bool on);
  bool offers_network() const;
  int choice_count() const;
  int ticked_count() const { return static_cast<int>(ticked_.size()); }
  QString summary() const;
  bool equal() const;

  /// Sets the tick of a row in view; does nothing where it cannot be set.
  Q_INVOKABLE void Tick(int row, bool on);
  /// The same for all rows in view.
  Q_INVOKABLE void TickAll(bool on);

 signals:
  void changed();

 private:
  const std::vector<ComparedRow>& rows() const;
  bool IsInView(const ComparedRow& row) const;
  bool MayTick(const ComparedRow& row) const;
  void Filter();
  size_t CountOf(DiffKind kind) const;

  std::shared_ptr<const SettingsComparison> comparison_;
  QString filter_;
  bool only_differing_ = true;
  bool only_writable_ = true;
  bool with_network_ = false;
  std::vector<size_t> shown_;          ///< places in rows()
  std::unordered_set<size_t> ticked_;  ///< the same
};
