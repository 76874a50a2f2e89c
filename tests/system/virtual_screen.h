#pragma once

#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

#include "support/child_process.h"
#include "support/qt_wait_for.h"

/// A screen that nobody sees, and the keys and clicks of a user on it.
class VirtualScreen {
 public:
  /// The tool that is missing to have one; empty when none is.
  static QString MissingTool() {
    for (const char* tool : {"Xvfb", "xdotool"}) {
      if (QStandardPaths::findExecutable(tool).isEmpty()) {
        return tool;
      }
    }
    return {};
  }

  /// Starts it; its name is in `environment` then. False when it does not come up.
  bool Start() {
    server_.Start("Xvfb", {"-displayfd", "1", "-screen", "0", "1400x900x24", "-nolisten", "tcp"});
    const QRegularExpression number("^(\\d+)$", QRegularExpression::MultilineOption);
    if (!WaitFor([&] { return number.match(server_.Output()).hasMatch(); })) {
      return false;
    }
    environment.insert("DISPLAY", ":" + number.match(server_.Output()).captured(1));
    environment.insert("QT_QPA_PLATFORM", "xcb");
    environment.insert("QT_QUICK_BACKEND", "software");
    // The screen's plug-in is unloaded before a sanitizer looks for leaks, so that what it keeps
    // cannot be told from ours; the other tests look for ours.
    environment.insert("ASAN_OPTIONS", "detect_leaks=0");
    return true;
  }

  QString XDoTool(const QStringList& arguments) const {
    ChildProcess tool;
    tool.SetEnvironment(environment);
    tool.Start("xdotool", arguments);
    EXPECT_EQ(tool.ExitCode(), 0) << tool.Output().toStdString();
    return tool.Output();
  }
  /// The program's window, once it is there.
  QString FindWindow() const {
    return XDoTool({"search", "--sync", "--onlyvisible", "--name", "^Tevron$"})
        .trimmed()
        .section('\n', -1);
  }

  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

 private:
  ChildProcess server_;
};
