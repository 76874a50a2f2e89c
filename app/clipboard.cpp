#include "clipboard.h"

#include <QClipboard>
#include <QGuiApplication>

void Clipboard::Copy(const QString& text) const { QGuiApplication::clipboard()->setText(text); }
