#include "screen_metrics.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

#include <memory>
#include <utility>

namespace {

template <auto Free>
struct Freer {
  template <typename T>
  void operator()(T* object) const {
    Free(object);
  }
};

using DisplayHandle = std::unique_ptr<Display, Freer<XCloseDisplay>>;
using ScreenResources = std::unique_ptr<XRRScreenResources, Freer<XRRFreeScreenResources>>;
using OutputInfo = std::unique_ptr<XRROutputInfo, Freer<XRRFreeOutputInfo>>;
using CrtcInfo = std::unique_ptr<XRRCrtcInfo, Freer<XRRFreeCrtcInfo>>;

bool HasCurrentResources(Display* display) {
  int event_base = 0;
  int error_base = 0;
  int major = 0;
  int minor = 0;
  return XRRQueryExtension(display, &event_base, &error_base) != 0 &&
         XRRQueryVersion(display, &major, &minor) != 0 && (major > 1 || (major == 1 && minor >= 3));
}

/// The part of the screen that the output shows, or 0 when it shows none.
RRCrtc CrtcOf(Display* display, XRRScreenResources* resources, RROutput output) {
  if (output == None) {
    return None;
  }
  const OutputInfo info(XRRGetOutputInfo(display, resources, output));
  return info && info->connection == RR_Connected ? info->crtc : RRCrtc{None};
}

RRCrtc PrimaryCrtc(Display* display, XRRScreenResources* resources) {
  RRCrtc crtc =
      CrtcOf(display, resources, XRRGetOutputPrimary(display, DefaultRootWindow(display)));
  for (int i = 0; crtc == None && i < resources->noutput; ++i) {
    crtc = CrtcOf(display, resources, resources->outputs[i]);
  }
  return crtc;
}

/// A CRTC covers width x height of the screen and drives a panel of its mode's size: the two differ
/// by the scaling that the desktop has set up.
bool ReadPrimaryOutput(Display* display, ScreenMetrics* metrics) {
  const Window root = DefaultRootWindow(display);
  const ScreenResources resources(XRRGetScreenResourcesCurrent(display, root));
  if (!resources) {
    return false;
  }
  const RRCrtc crtc = PrimaryCrtc(display, resources.get());
  const CrtcInfo info(crtc == None ? nullptr : XRRGetCrtcInfo(display, resources.get(), crtc));
  if (!info || info->width == 0 || info->height == 0) {
    return false;
  }
  for (int i = 0; i < resources->nmode; ++i) {
    const XRRModeInfo& mode = resources->modes[i];
    if (mode.id == info->mode) {
      metrics->logical_width = static_cast<int>(info->width);
      metrics->logical_height = static_cast<int>(info->height);
      metrics->physical_width = static_cast<int>(mode.width);
      metrics->physical_height = static_cast<int>(mode.height);
      if ((info->rotation & (RR_Rotate_90 | RR_Rotate_270)) != 0) {
        std::swap(metrics->physical_width, metrics->physical_height);
      }
      return true;
    }
  }
  return false;
}

}  // namespace

ScreenMetrics ReadScreenMetrics() {
  ScreenMetrics metrics;
  const DisplayHandle display(XOpenDisplay(nullptr));
  if (!display) {
    return metrics;
  }
  if (!HasCurrentResources(display.get()) || !ReadPrimaryOutput(display.get(), &metrics)) {
    const int screen = DefaultScreen(display.get());
    metrics.logical_width = metrics.physical_width = DisplayWidth(display.get(), screen);
    metrics.logical_height = metrics.physical_height = DisplayHeight(display.get(), screen);
  }
  return metrics;
}
