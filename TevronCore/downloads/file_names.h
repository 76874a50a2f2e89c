#pragma once

#include <QString>
#include <QUrl>

/// The folder that a URL, or a path given in its place, names. Characters that begin another part
/// of a URL count as the folder's when they were not escaped. Empty for anything but a local
/// folder.
QString LocalFolderOf(const QUrl& url);

/// The part of a file name that stands for `name`, which may hold any character.
QString FileNamePart(const QString& name);

/// The local time in `format`, in digits whatever the user's language.
QString TimeNow(const char* format);
