#include "row_search.h"

#include <algorithm>

namespace {

bool IsKnown(const QVariantMap& leaf) { return leaf.value("state", "read") != "unread"; }

// "12" and "12.00" are one value.
bool IsSameValue(const QString& one, const QString& other) {
  bool is_number = false;
  bool is_other_number = false;
  const double number = one.toDouble(&is_number);
  const double other_number = other.toDouble(&is_other_number);
  return is_number && is_other_number ? number == other_number
                                      : one.compare(other, Qt::CaseInsensitive) == 0;
}

// A table without a default for the variable says nothing about it.
bool IsChanged(const QVariantMap& leaf) {
  const QString standard = leaf.value("default_val").toString();
  return leaf.value("permission").toInt() != 0 && leaf.value("editable", true).toBool() &&
         IsKnown(leaf) && !standard.isEmpty() &&
         !IsSameValue(leaf.value("current_val").toString(), standard);
}

QString ValueText(const QVariantMap& leaf) {
  if (!IsKnown(leaf)) {
    return {};
  }
  const QString value = leaf.value("current_val").toString();
  return leaf.value("varname_value_to_option").toMap().value(value).toString() + '\n' + value;
}

}  // namespace

// No word reaches over the end of a line.
QString RowSearch::TextOf(const QString& caption, const QVariantMap& leaf) {
  const QString text = caption + '\n' + leaf.value("page").toString() + '\n' +
                       leaf.value("group_caption").toString() + '\n' + ValueText(leaf);
  return text.toCaseFolded();
}

bool RowSearch::Finds(const QVariantMap& leaf, const QString& text) const {
  if (!AsksForAny() || (only_edited && !leaf.value("edited").toBool()) ||
      (only_changed && !IsChanged(leaf))) {
    return false;
  }
  return std::all_of(words.begin(), words.end(),
                     [&](const QString& word) { return text.contains(word); });
}
