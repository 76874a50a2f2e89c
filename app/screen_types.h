#pragma once

/// Makes the program's own small QML types known under "import Tevron 1.0": LogLines, LogFilter,
/// PageRows, PathDialog, InputRules, Clipboard, LinkWatch, RecentLidars, DownloadWatch,
/// SerialPortList, SettingsWatch, SettingsRows, SupportBundle, UartWatch, UdpWatch, UpgradeChoice,
/// UpgradeWatch, MonitorSource, PlotData and PlotItem. Call once, before a screen is loaded.
void RegisterScreenTypes();
