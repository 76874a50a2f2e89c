#pragma once

#include <QString>
#include <string>

/// A text that a device may have said as a part of a path: letters, digits and "-" stand for
/// themselves, everything else is encoded, dots, slashes and "_" above all; a long text is cut.
/// Different texts give different parts, none of them empty.
QString PathPartOf(const std::string& text);

/// The text back; of one that was cut its beginning.
std::string TextOfPathPart(const QString& part);
