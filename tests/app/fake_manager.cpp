#include "app/fake_manager.h"

void FakeManager::SetText(int type, int level1, int level2, int level3, const QString& text) {
  put(level1, level2, level3,
      type == 3   ? "option_index"
      : type == 2 ? "switch_index"
                  : "current_val",
      text);
  put(level1, level2, level3, "edited", true);
  ++pending;
  Note({"SetText", type, level1, level2, level3, text});
}

int FakeManager::UpgradeLidar(const QUrl& url, int level1, int level2, int level3) {
  Note({"UpgradeLidar", url.toString(), level1, level2, level3});
  return 0;
}

void FakeManager::put(int level1, int level2, int level3, const QString& key,
                      const QVariant& value) {
  QVariantList page = map[level1].toList();
  QVariantList group = page[level2].toList();
  QVariantMap leaf = group[level3].toMap();
  leaf[key] = value;
  group[level3] = leaf;
  page[level2] = group;
  map[level1] = page;
}

bool FakeManager::Note(const QVariantList& call) {
  calls.append(QVariant(call));
  emit noted();
  return true;
}
