#pragma once

#include <QMap>
#include <QString>
#include <string>

/// The texts of an INI file as QSettings writes them, by "name" or "section/name". Only single
/// texts: values that name a type ("@Variant(...)") and lists are passed over, and gone once the
/// file is written: to build an object from a file that anybody may have written can end the
/// program.
using PlainIni = QMap<QString, QString>;

/// Reads a file of at most 64 KiB; one that is not there has no texts. Returns "", or why it cannot
/// be used, as files/whole_file.h has it.
std::string ReadPlainIni(const std::string& path, PlainIni* texts);

/// Writes it whole, with its folder. Returns "", or why it could not be written.
std::string WritePlainIni(const std::string& path, const PlainIni& texts);
