#include <windows.h>

#include "screen_metrics.h"

ScreenMetrics ReadScreenMetrics() {
  // The device context is never given back, on purpose: this runs once in the life of the process.
  const HDC desktop = GetDC(GetDesktopWindow());
  ScreenMetrics metrics;
  metrics.logical_width = GetSystemMetrics(SM_CXSCREEN);
  metrics.logical_height = GetSystemMetrics(SM_CYSCREEN);
  metrics.physical_width = GetDeviceCaps(desktop, DESKTOPHORZRES);
  metrics.physical_height = GetDeviceCaps(desktop, DESKTOPVERTRES);
  return metrics;
}
