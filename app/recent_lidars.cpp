#include "recent_lidars.h"

#include <QStringList>
#include <QVariantMap>
#include <algorithm>

#include "connection/connection_settings.h"

namespace {

constexpr int kMostEntries = 8;
constexpr int kMostLetters = 200;
constexpr char kEntriesKey[] = "recent_lidars";
constexpr char kModelKey[] = "last_model";
const QStringList& Fields() {
  static const QStringList fields{"model", "address", "port", "number"};
  return fields;
}

bool IsPlain(const QString& text) {
  return text.size() <= kMostLetters &&
         std::all_of(text.begin(), text.end(), [](QChar c) { return c.isPrint(); });
}

/// Empty for what is no entry.
QVariantMap EntryOf(const QStringList& texts) {
  const bool is_sound = texts.size() == Fields().size() && !texts[0].isEmpty() &&
                        !texts[1].isEmpty() && std::all_of(texts.begin(), texts.end(), IsPlain);
  QVariantMap entry;
  for (int i = 0; is_sound && i < texts.size(); ++i) {
    entry.insert(Fields()[i], texts[i]);
  }
  if (is_sound) {
    const QString place = texts[2].isEmpty() ? texts[1] : texts[1] + ", " + texts[2];
    const QString number = texts[3].isEmpty() ? QString() : " " + texts[3];
    entry.insert(QStringLiteral("label"), place + QStringLiteral(" – ") + texts[0] + number);
  }
  return entry;
}

QString LineOf(const QVariantMap& entry) {
  QStringList texts;
  for (const QString& field : Fields()) {
    texts << entry[field].toString();
  }
  return texts.join('\t');
}

}  // namespace

RecentLidars::RecentLidars(QObject* parent)
    : QObject(parent), last_model_(LoadKeptText(SettingsFilePath(), kModelKey)) {
  for (const QString& line : LoadKeptText(SettingsFilePath(), kEntriesKey).split('\n')) {
    const QVariantMap entry = EntryOf(line.split('\t'));
    if (!entry.isEmpty() && !entries_.contains(entry) && entries_.size() < kMostEntries) {
      entries_.append(entry);
    }
  }
}

void RecentLidars::SetLastModel(const QString& model) {
  if (model == last_model_) {
    return;
  }
  last_model_ = model;
  SaveKeptText(SettingsFilePath(), kModelKey, model);
  emit changed();
}

void RecentLidars::Note(const QString& model, const QString& address, const QString& port,
                        const QString& number) {
  QVariantMap latest = EntryOf({model, address, port, number});
  if (latest.isEmpty()) {
    return;
  }
  QVariantList entries;
  for (const QVariant& held : entries_) {
    const QVariantMap entry = held.toMap();
    if (entry["model"] != model || entry["address"] != address || entry["port"] != port) {
      entries.append(entry);
    } else if (number.isEmpty()) {
      latest = entry;
    }
  }
  entries.prepend(latest);
  entries = entries.mid(0, kMostEntries);
  if (entries == entries_) {
    return;
  }
  entries_ = entries;
  QStringList lines;
  for (const QVariant& entry : entries_) {
    lines << LineOf(entry.toMap());
  }
  SaveKeptText(SettingsFilePath(), kEntriesKey, lines.join('\n'));
  emit changed();
}
