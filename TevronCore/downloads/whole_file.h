#pragma once

#include <QString>
#include <QUrl>
#include <cstdint>
#include <string>
#include <vector>

/// How the writing of a file went.
struct FileOutcome {
  bool opened = false;  ///< a new file could be begun in the folder
  bool written = false;
  std::string reason;  ///< of a failure, as the system words it
};

/// Writes the bytes beside `path` and gives them its name once all of them are stored: whatever
/// happens, the name stands for the whole of them or for what it stood for before. Waits for the
/// disk.
FileOutcome WriteWholeFile(const QString& path, const std::vector<uint8_t>& bytes);

/// The folder that a URL, or a path given in its place, names. Characters that begin another part
/// of a URL count as the folder's when they were not escaped. Empty for anything but a local
/// folder.
QString LocalFolderOf(const QUrl& url);

/// The part of a file name that stands for `name`, which may hold any character.
QString FileNamePart(const QString& name);

/// The local time in `format`, in digits whatever the user's language.
QString TimeNow(const char* format);
