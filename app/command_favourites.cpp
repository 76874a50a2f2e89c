#include "command_favourites.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QVariantMap>

#include "connection/connection_settings.h"

namespace {

constexpr char kKey[] = "console/favourites";

QVariantMap Favourite(const QString& name, const QString& command, const QString& payload) {
  return {{"name", name}, {"command", command}, {"payload", payload}};
}

}  // namespace

CommandFavourites::CommandFavourites(QObject* parent) : QObject(parent) {
  const QByteArray kept = LoadKeptText(SettingsFilePath(), kKey).toUtf8();
  for (const QJsonValue entry : QJsonDocument::fromJson(kept).array()) {
    const QString name = entry["name"].toString().left(kLongestName);
    const QString payload = entry["payload"].toString();
    if (!name.isEmpty() && payload.size() <= kLongestPayload && list_.size() < kMost) {
      list_ += Favourite(name, entry["command"].toString().left(kLongestName), payload);
    }
  }
}

QString CommandFavourites::Add(const QString& name, const QString& command,
                               const QString& payload) {
  const QString short_name = name.trimmed().left(kLongestName);
  if (short_name.isEmpty()) {
    return tr("Give the favourite a name.");
  }
  if (payload.size() > kLongestPayload || command.size() > kLongestName) {
    return tr("The command is too long for a favourite.");
  }
  for (QVariant& entry : list_) {
    if (entry.toMap()["name"] == short_name) {
      entry = Favourite(short_name, command, payload);
      return Keep() ? QString() : tr("The settings file could not be written.");
    }
  }
  if (list_.size() >= kMost) {
    return tr("There are %1 favourites already. Remove one first.").arg(kMost);
  }
  list_ += Favourite(short_name, command, payload);
  return Keep() ? QString() : tr("The settings file could not be written.");
}

void CommandFavourites::Remove(int index) {
  if (index >= 0 && index < list_.size()) {
    list_.removeAt(index);
    Keep();
  }
}

bool CommandFavourites::Keep() {
  emit changed();
  const QByteArray text =
      QJsonDocument(QJsonArray::fromVariantList(list_)).toJson(QJsonDocument::Compact);
  return SaveKeptText(SettingsFilePath(), kKey, QString::fromUtf8(text)).empty();
}
