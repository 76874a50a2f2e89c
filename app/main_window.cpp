#include "main_window.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QUrl>
#include <QWindow>

#include "screen_types.h"
#include "tevron_manager.h"
#include "ui_main_window.h"

namespace {

constexpr char kDefaultModel[] = "Orca";
constexpr char kDefaultTable[] = "./Config/varID/Orca.csv";
constexpr char kManagerProperty[] = "tevron_manager";
constexpr char kFirstScreen[] = "qrc:/Qml/main.qml";

// Larger than the window starts out with, on purpose: the layout grows the window to fit the scene.
constexpr int kLeastSceneWidth = 1300;
constexpr int kLeastSceneHeight = 800;

constexpr int kKeyboardRequestIntervalMs = 20;
constexpr int kMaxKeyboardRequests = 25;

}  // namespace

// The screens are linked in with a static library, which a program has to ask for by name. The
// macro declares a function and so must stand outside every namespace.
static void RegisterScreens() {
  Q_INIT_RESOURCE(resources);
  RegisterScreenTypes();
}

MainWindow::MainWindow(QWidget* parent, const QString& modulePV)
    : QMainWindow(parent), form_(std::make_unique<Ui::MainWindow>()) {
  form_->setupUi(this);
  view_ = std::make_unique<QQuickView>();
  manager_.reset(TevronManager::Instance(true, kDefaultTable));
  manager_->InitConfigFileParser(QString::fromLatin1(kDefaultModel));
  manager_->SetModulePV(modulePV);
  HostScene();
}

MainWindow::~MainWindow() {
  form_.reset();
  view_.reset();
  manager_.reset();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  QObject* scene = view_->rootObject();
  if (!asks_before_closing_ || scene == nullptr || IsSafeToClose(*scene)) {
    QMainWindow::closeEvent(event);
    return;
  }
  event->ignore();
  // The question is answered from the keyboard, which is the window's until something is clicked.
  view_->requestActivate();
  QMetaObject::invokeMethod(scene, "askToClose");
}

bool MainWindow::IsSafeToClose(const QObject& scene) const {
  return !manager_->UpgradeNow().running && !scene.property("hasEdits").toBool();
}

// A desktop without a window manager gives the keyboard to nobody, so the window takes it.
void MainWindow::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  activateWindow();
}

void MainWindow::WatchKeyboard(const QWindow* focused) {
  keyboard_requests_ = 0;
  if (focused != nullptr && focused == windowHandle()) {
    keyboard_timer_.start();
  } else {
    keyboard_timer_.stop();
  }
}

// Under X11 a request is dropped that seems older than what gave the outer window the keyboard, and
// the time that Qt puts into it is that of the last event it has seen. The request itself brings
// such an event, so that the second one counts.
void MainWindow::AskForKeyboard() {
  if (++keyboard_requests_ >= kMaxKeyboardRequests) {
    keyboard_timer_.stop();
  }
  view_->requestActivate();
}

void MainWindow::CloseWithoutAsking() {
  asks_before_closing_ = false;
  close();
}

void MainWindow::HostScene() {
  RegisterScreens();
  QWidget* container = QWidget::createWindowContainer(view_.get(), this);
  view_->setResizeMode(QQuickView::SizeRootObjectToView);
  view_->setColor(palette().color(QPalette::Window));
  // Published before the source is set: bindings look for the manager the moment they are made.
  view_->rootContext()->setContextProperty(kManagerProperty, manager_.get());
  view_->setSource(QUrl(QString::fromLatin1(kFirstScreen)));
  // Later, when the scene has done with the box that was answered.
  connect(view_->rootObject(), SIGNAL(closeConfirmed()), this, SLOT(CloseWithoutAsking()),
          Qt::QueuedConnection);

  container->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  container->setMinimumSize(kLeastSceneWidth, kLeastSceneHeight);
  container->setFocusPolicy(Qt::TabFocus);
  form_->horizontalLayout3D->addWidget(container);
  keyboard_timer_.setInterval(kKeyboardRequestIntervalMs);
  connect(&keyboard_timer_, &QTimer::timeout, this, &MainWindow::AskForKeyboard);
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &MainWindow::WatchKeyboard);
}
