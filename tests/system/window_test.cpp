// The program and a virtual lidar as they are shipped, on a virtual screen: what a user does with
// mouse and keyboard comes from outside, and what counts is what the lidar holds in the end.

#include <gtest/gtest.h>

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include "support/child_process.h"
#include "support/qt_wait_for.h"
#include "support/virtual_lidar_process.h"
#include "system/virtual_screen.h"

// Last, because its macros take names like None and Bool away.
#include <X11/Xlib.h>

namespace {

// What the close button of a window manager sends.
void AskWindowToClose(const QString& display_name, unsigned long window) {
  Display* display = XOpenDisplay(display_name.toLocal8Bit().constData());
  ASSERT_NE(display, nullptr);
  XEvent event = {};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", 0);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", 0));
  XSendEvent(display, window, 0, NoEventMask, &event);
  XCloseDisplay(display);
}

class WindowTest : public testing::Test {
 protected:
  void SetUp() override {
    if (const QString tool = VirtualScreen::MissingTool(); !tool.isEmpty()) {
      GTEST_SKIP() << tool.toStdString()
                   << " is not installed: the window is not tried on a screen";
    }
    // The virtual lidar finds the tables below the current directory.
    ASSERT_TRUE(QDir::setCurrent(TEVRON_TEST_ROOT));
    ASSERT_TRUE(screen_.Start());
    lidar_ = std::make_unique<VirtualLidarProcess>();
    StartProgram();
  }

  void StartProgram() {
    QSettings settings(SettingsPath(), QSettings::IniFormat);
    settings.setValue("device_ip_address", "127.0.0.1");
    settings.setValue("cmx_port", lidar_->port());
    settings.sync();
    screen_.environment.insert("HOME", home_.path());
    screen_.environment.insert("XDG_CONFIG_HOME", home_.filePath(".config"));
    program_.SetEnvironment(screen_.environment);
    program_.Start(TEVRON_PROGRAM);
    window_ = screen_.FindWindow();
    ASSERT_FALSE(window_.isEmpty()) << program_.Output().toStdString();
  }

  void XDoTool(const QStringList& arguments) const { screen_.XDoTool(arguments); }
  void Click(int from_left, int from_top) const {
    XDoTool({"mousemove", "--window", window_, QString::number(from_left),
             QString::number(from_top), "click", "1"});
  }

  // A key that comes before the scene has taken its place is lost, and pressed again.
  bool Connect() {
    return WaitFor([&] {
      XDoTool({"key", "F5"});
      return WaitFor([&] { return lidar_->Output().contains("request 0x07"); }, 2000);
    });
  }

  // Presses F12 until the log is open or folded, as the settings file tells.
  bool SwitchLog(const char* folded) const {
    const auto is_kept = [&] {
      return QSettings(SettingsPath(), QSettings::IniFormat).value("window/log_folded") == folded;
    };
    return WaitFor([&] {
      XDoTool({"key", "F12"});
      return WaitFor(is_kept, 2000);
    });
  }

  QString SettingsPath() const {
    return home_.filePath("Documents/CorvanViewDataFiles/RecvSettings.ini");
  }

  VirtualScreen screen_;
  std::unique_ptr<VirtualLidarProcess> lidar_;
  QTemporaryDir home_;
  ChildProcess program_;
  QString window_;
};

TEST_F(WindowTest, WritesATypedValueToTheLidarAndLeavesASilentOneAtOnce) {
  EXPECT_TRUE(SwitchLog("0")) << "keys count before anything was clicked";
  XDoTool({"windowfocus", "--sync", window_});
  EXPECT_TRUE(SwitchLog("1")) << "and when the desktop has given them to the outer window";

  ASSERT_TRUE(Connect());
  ASSERT_TRUE(WaitFor([&] { return lidar_->Output().contains("request 0x02"); }));
  ASSERT_EQ(lidar_->Held("Minimum Distance"), "20");

  // From the first tab two to the right to "Scan", and from there nine fields on, behind "Logs" and
  // the search.
  Click(55, 135);
  XDoTool({"key", "Right", "Right"});
  ASSERT_TRUE(WaitFor([&] { return lidar_->Output().contains("request 0x11"); }));
  QStringList keys{"key"};
  for (int stop = 0; stop < 11; ++stop) {
    keys << "Tab";
  }
  XDoTool(keys);
  XDoTool({"key", "ctrl+a"});
  XDoTool({"type", "55"});
  XDoTool({"key", "ctrl+s"});
  EXPECT_TRUE(WaitFor([&] { return lidar_->Held("Minimum Distance") == "55"; }))
      << lidar_->Output().toStdString();

  lidar_->Freeze();
  AskWindowToClose(screen_.environment.value("DISPLAY"), window_.toULong());
  EXPECT_EQ(program_.ExitCode(), 0) << program_.Output().toStdString();
}

}  // namespace
