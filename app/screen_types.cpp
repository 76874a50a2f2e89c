#include "screen_types.h"

#include <QtQml>

#include "clipboard.h"
#include "command_favourites.h"
#include "command_names.h"
#include "console_words.h"
#include "download_watch.h"
#include "input_rules.h"
#include "link_watch.h"
#include "log_filter.h"
#include "log_lines.h"
#include "log_selection.h"
#include "long_calls.h"
#include "manager_facts.h"
#include "monitor_source.h"
#include "page_rows.h"
#include "path_dialog.h"
#include "plot/plot_item.h"
#include "press_watch.h"
#include "recent_lidars.h"
#include "serial_port_list.h"
#include "settings_rows.h"
#include "settings_watch.h"
#include "support_bundle.h"
#include "text_file.h"
#include "uart_watch.h"
#include "udp_watch.h"
#include "upgrade_choice.h"
#include "upgrade_watch.h"
#include "window_state.h"

void RegisterScreenTypes() {
  qmlRegisterType<LogLines>("Tevron", 1, 0, "LogLines");
  qmlRegisterType<LogFilter>("Tevron", 1, 0, "LogFilter");
  qmlRegisterType<LogSelection>("Tevron", 1, 0, "LogSelection");
  qmlRegisterType<TextFile>("Tevron", 1, 0, "TextFile");
  qmlRegisterType<PageRows>("Tevron", 1, 0, "PageRows");
  qmlRegisterType<PathDialog>("Tevron", 1, 0, "PathDialog");
  qmlRegisterType<Clipboard>("Tevron", 1, 0, "Clipboard");
  qmlRegisterType<CommandFavourites>("Tevron", 1, 0, "CommandFavourites");
  qmlRegisterType<CommandNames>("Tevron", 1, 0, "CommandNames");
  qmlRegisterSingletonType<ConsoleWords>("Tevron", 1, 0, "ConsoleWords",
                                         [](QQmlEngine*, QJSEngine*) { return new ConsoleWords; });
  qmlRegisterSingletonType<InputRules>("Tevron", 1, 0, "InputRules",
                                       [](QQmlEngine*, QJSEngine*) { return new InputRules; });
  qmlRegisterSingletonType<LongCalls>("Tevron", 1, 0, "LongCalls",
                                      [](QQmlEngine*, QJSEngine*) { return new LongCalls; });
  qmlRegisterType<RecentLidars>("Tevron", 1, 0, "RecentLidars");
  qmlRegisterType<LinkWatch>("Tevron", 1, 0, "LinkWatch");
  qmlRegisterType<ManagerFacts>("Tevron", 1, 0, "ManagerFacts");
  qmlRegisterSingletonType<PressWatch>("Tevron", 1, 0, "PressWatch",
                                       [](QQmlEngine*, QJSEngine*) { return new PressWatch; });
  qmlRegisterType<DownloadWatch>("Tevron", 1, 0, "DownloadWatch");
  qmlRegisterType<SerialPortList>("Tevron", 1, 0, "SerialPortList");
  qmlRegisterUncreatableType<SettingsRows>("Tevron", 1, 0, "SettingsRows",
                                           "It belongs to a SettingsWatch.");
  qmlRegisterType<SettingsWatch>("Tevron", 1, 0, "SettingsWatch");
  qmlRegisterType<SupportBundle>("Tevron", 1, 0, "SupportBundle");
  qmlRegisterType<UartWatch>("Tevron", 1, 0, "UartWatch");
  qmlRegisterType<UdpWatch>("Tevron", 1, 0, "UdpWatch");
  qmlRegisterType<UpgradeChoice>("Tevron", 1, 0, "UpgradeChoice");
  qmlRegisterType<UpgradeWatch>("Tevron", 1, 0, "UpgradeWatch");
  qmlRegisterType<WindowState>("Tevron", 1, 0, "WindowState");
  qmlRegisterType<MonitorSource>("Tevron", 1, 0, "MonitorSource");
  qmlRegisterType<PlotItem>("Tevron", 1, 0, "PlotItem");
  qmlRegisterUncreatableType<PlotData>("Tevron", 1, 0, "PlotData",
                                       "It belongs to a MonitorSource.");
}
