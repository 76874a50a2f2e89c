#pragma once

#include <QMainWindow>
#include <QString>
#include <QTimer>
#include <memory>

class QCloseEvent;
class QQuickView;
class QWindow;
class TevronManager;

namespace Ui {
class MainWindow;
}

/// The program's only window: a widget window that one QML scene fills. It makes the manager that
/// all screens talk to, publishes it to the scene as "tevron_manager", and takes it down again: the
/// form first, then the scene, then the manager, so that no screen outlives what it is bound to.
///
/// Closing it while an upgrade runs, or with edits that are not saved, is asked about first.
///
/// Data folders are looked for in the current directory, which has to be the install root.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// Builds everything and loads the first screen; nothing is shown yet. A non-empty `modulePV`
  /// names the model that the command line fixes; a name without a table changes nothing. There may
  /// be one window at a time.
  MainWindow(QWidget* parent, const QString& modulePV);
  ~MainWindow() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private slots:
  void CloseWithoutAsking();

 private:
  void HostScene();
  bool IsSafeToClose(const QObject& scene) const;
  void WatchKeyboard(const QWindow* focused);
  void AskForKeyboard();

  std::unique_ptr<Ui::MainWindow> form_;
  std::unique_ptr<QQuickView> view_;
  std::unique_ptr<TevronManager> manager_;
  bool asks_before_closing_ = true;
  // Runs while the desktop has given the keyboard to the outer window, where nothing would take a
  // key: all that the user sees is the scene.
  QTimer keyboard_timer_;
  int keyboard_requests_ = 0;
};
