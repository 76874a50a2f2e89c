#include "support_bundle/table_sums.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QStringList>

#include "files/whole_file.h"

namespace {

// Far more than a folder of tables has: a folder given by mistake is not walked to its end.
constexpr int kMostFiles = 2000;
constexpr uint64_t kLargestTable = uint64_t{16} * 1024 * 1024;

/// As an editor or a careful user may have called a copy of it, too.
bool IsCalledLikeKeys(const QString& name) {
  return name.contains(QStringLiteral("key"), Qt::CaseInsensitive) ||
         name.contains(QStringLiteral("secret"), Qt::CaseInsensitive) ||
         name.endsWith(QStringLiteral(".pem"), Qt::CaseInsensitive);
}

std::string LineOf(const QString& path, const QString& name, const TextCleaner& cleaner) {
  const std::string shown = cleaner.Clean(name.toStdString());
  if (IsCalledLikeKeys(QFileInfo(name).fileName())) {
    return "# " + shown + ": not told\n";
  }
  QByteArray bytes;
  if (!ReadWholeFile(path.toStdString(), kLargestTable, &bytes).empty()) {
    return "# " + shown + ": cannot be read\n";
  }
  if (cleaner.HoldsKey({bytes.constData(), static_cast<size_t>(bytes.size())})) {
    return "# " + shown + ": not told\n";
  }
  return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString() + "  " +
         shown + '\n';
}

/// Each file is told of by its name below the folder, behind `head`.
std::string SumsIn(const QDir& folder, const QString& head, const TextCleaner& cleaner) {
  QStringList names;
  QDirIterator files(folder.path(), QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext() && names.size() < kMostFiles) {
    names.append(folder.relativeFilePath(files.next()));
  }
  names.sort();
  std::string lines;
  for (const QString& name : names) {
    lines += LineOf(folder.filePath(name), head + name, cleaner);
  }
  return files.hasNext() ? lines + "# and more files\n" : lines;
}

}  // namespace

std::string TableSums(const ConfigFolder& config, const TextCleaner& cleaner) {
  std::string lines;
  for (const ConfigLayer& layer : config.layers()) {
    if (layer.owner == ConfigLayer::Owner::kSite) {
      continue;  // it lies in the first
    }
    const QDir folder(QDir(QString::fromStdString(layer.path)).absolutePath());
    const bool is_user = layer.owner == ConfigLayer::Owner::kUser;
    lines += SumsIn(folder, is_user ? folder.path() + '/' : QString(), cleaner);
  }
  return lines;
}
