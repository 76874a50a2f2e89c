#include "window_state.h"

#include "connection/connection_settings.h"

namespace {

constexpr char kConsoleFoldedKey[] = "window/console_folded";
constexpr char kLogFoldedKey[] = "window/log_folded";
constexpr char kConsoleWidthKey[] = "window/console_width";
constexpr char kLogHeightKey[] = "window/log_height";

// Larger than any screen: a size beyond it was not written by a window.
constexpr int kLargestSize = 20000;

bool KeptFold(const char* key) { return LoadKeptText(SettingsFilePath(), key) != "0"; }

int KeptSize(const char* key) {
  const int size = LoadKeptText(SettingsFilePath(), key).toInt();
  return size > 0 && size <= kLargestSize ? size : 0;
}

}  // namespace

WindowState::WindowState(QObject* parent)
    : QObject(parent),
      console_folded_(KeptFold(kConsoleFoldedKey)),
      log_folded_(KeptFold(kLogFoldedKey)),
      console_width_(KeptSize(kConsoleWidthKey)),
      log_height_(KeptSize(kLogHeightKey)) {}

void WindowState::SetConsoleFolded(bool folded) {
  Change(&console_folded_, folded, kConsoleFoldedKey);
}

void WindowState::SetLogFolded(bool folded) { Change(&log_folded_, folded, kLogFoldedKey); }

void WindowState::SetConsoleWidth(int pixels) { Change(&console_width_, pixels, kConsoleWidthKey); }

void WindowState::SetLogHeight(int pixels) { Change(&log_height_, pixels, kLogHeightKey); }

template <class Value>
void WindowState::Change(Value* member, Value value, const char* key) {
  if (*member == value) {
    return;
  }
  *member = value;
  SaveKeptText(SettingsFilePath(), key, QString::number(value));
  emit changed();
}
