#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

/// What a search over all pages asks for. A row has to meet every wish; a search without any wish
/// finds nothing.
struct RowSearch {
  /// Each of them stands in the name, the page, the group or the value of the row, in any letter
  /// case. Given case-folded. What a value would be by default is no value.
  QStringList words;
  bool only_edited = false;
  /// Only settings of which it is known that the lidar holds, or is to get, something else than the
  /// table's default.
  bool only_changed = false;

  bool AsksForAny() const { return !words.isEmpty() || only_edited || only_changed; }
  /// What words are looked for in: that of a row called `caption` with the variable `leaf`.
  static QString TextOf(const QString& caption, const QVariantMap& leaf);
  /// Whether the row with this variable and text is looked for.
  bool Finds(const QVariantMap& leaf, const QString& text) const;
};
