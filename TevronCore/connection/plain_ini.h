#pragma once

#include <QSettings>
#include <QString>

/// Files beyond this size are not read.
inline constexpr int kMaxPlainIniSize = 64 * 1024;

/// A format for QSettings: INI files as QSettings writes them, of which only single texts are
/// taken. Values that name a type ("@Variant(...)") and lists are passed over, and gone once the
/// file is written: to build an object from a file that anybody may have written can end the
/// program.
QSettings::Format PlainIniFormat();

/// Whether what lies at `path` may be opened: nothing, or a regular file of at most
/// kMaxPlainIniSize bytes that holds settings. Opening another kind of file could wait for ever,
/// and QSettings tells of a file that it does not understand the first time alone: from then on it
/// takes it for an empty one, and writes over it.
bool IsPlainIniFile(const QString& path);
