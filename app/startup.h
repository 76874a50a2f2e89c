#pragma once

#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QString>

#include "screen_metrics.h"

// The decisions of start-up, in the order in which main() takes them. Nothing here is fatal: what
// is missing costs one warning through Qt's message logger, and the program goes on without it. All
// of it runs on the main thread.

/// The dark palette of windows and screens, the same for every colour group. Needs no application
/// object; the roles that it leaves alone (shadow, links, tooltip text) keep Qt's defaults.
QPalette ApplicationPalette();

/// How much larger the screen really is than programs are told: the smaller of the two quotients of
/// physical and logical size, in single precision. All sizes in pixels and greater than 0.
float ScreenRatio(int w, int h, int physical_w, int physical_h);

/// The factor by which the whole interface is enlarged. A desktop that enlarges by more than 1.25
/// is followed at four fifths; otherwise a logical width beyond 1920 pixels counts, and the factor
/// is never below 1. A size that is not greater than 0 gives 1.
double ComputeScaleFactor(int w, int h, int physical_w, int physical_h);

/// Hands the factor for this screen to Qt in QT_SCALE_FACTOR, with at most six digits. Has an
/// effect only before the application object exists.
void ApplyScaleFactor(const ScreenMetrics& screen);

/// The folder that fonts/, png/ and Config/ lie in: the parent of the executable's folder when it
/// holds the regular font, else the executable's own folder when that does, else the parent, with a
/// warning. `exe_dir` is absolute.
QString ResolveInstallRoot(const QString& exe_dir);

/// Makes a font file known to the application. Returns its font id, or -1 with a warning when the
/// file is missing, not a regular file, or not a font. `label` names the font in that warning.
/// Needs the application object.
int LoadApplicationFont(const QString& path, const QString& label);

/// Loads the fonts under `root` and returns the font of the interface: the regular one's family, or
/// the default font when it cannot be had.
QFont ApplicationFont(const QString& root);

/// The window icon under `root`; a null icon, with a warning, when the file is missing.
QIcon ApplicationIcon(const QString& root);

/// Writes what the device library logs from now on to DeviceLogPath() (rotated, see
/// Log/logger.h). A folder that cannot be written costs the
/// log only, with a warning. Needs the organisation name.
void StartDeviceLog();

/// The model that the command line fixes with "-modulePV=NAME": the text after the first such
/// argument, or empty. Letter case counts; every other argument is left to others.
QString ModulePvArgument(int argc, char** argv);
