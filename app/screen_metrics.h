#pragma once

/// What the primary screen measures, in pixels. The logical size is the one that programs are told
/// and place their windows in; the physical one is what the panel really has. They differ where
/// the desktop enlarges everything on behalf of its programs.
struct ScreenMetrics {
  int logical_width = 1920;
  int logical_height = 1080;
  int physical_width = 1920;
  int physical_height = 1080;
};

/// Asks the window system about the primary screen. Needs no application object, which is the
/// point: the scale has to be known before there is one. Without a display the defaults above
/// (1920 x 1080, not enlarged) are returned. Call on the main thread.
ScreenMetrics ReadScreenMetrics();
