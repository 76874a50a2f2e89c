#include "app/screen.h"

#include <QDropEvent>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QPalette>
#include <QQmlContext>
#include <QResource>
#include <QTest>
#include <algorithm>
#include <stdexcept>

#include "connection/connection_settings.h"
#include "screen_types.h"
#include "startup.h"

// The macro declares a function and so must stand outside every namespace.
static void InitScreens() { Q_INIT_RESOURCE(resources); }

namespace {

constexpr QSize kWindowSize(1300, 800);

// What has to stand before the manager is made. Returns the table that the manager starts with.
std::string PrepareScene() {
  InitScreens();
  RegisterScreenTypes();
  QGuiApplication::setPalette(ApplicationPalette());
  QFile::remove(SettingsFilePath());
  return "./Config/varID/Orca.csv";
}

// Items of the scene and of its boxes alike hang below the window's content item.
QQuickItem* FindBelow(QQuickItem* item, const QString& name) {
  if (!item->isVisible()) {
    return nullptr;
  }
  if (item->objectName() == name) {
    return item;
  }
  for (QQuickItem* child : item->childItems()) {
    if (QQuickItem* found = FindBelow(child, name)) {
      return found;
    }
  }
  return nullptr;
}

// Whether a focus ring is drawn in `item`, inside what the window shows.
bool HasFocusMark(const QQuickItem* item) {
  if (QByteArray(item->metaObject()->className()).startsWith("FocusRing") && item->isVisible()) {
    const QRectF place = item->mapRectToScene(item->boundingRect());
    return item->window()->contentItem()->contains(place.center());
  }
  const QList<QQuickItem*> children = item->childItems();
  return std::any_of(children.begin(), children.end(), HasFocusMark);
}

}  // namespace

Screen::Screen(const QString& model) : manager_(true, PrepareScene()) {
  manager_.InitConfigFileParser();
  view_.rootContext()->setContextProperty(QStringLiteral("tevron_manager"), &manager_);
  view_.setResizeMode(QQuickView::SizeRootObjectToView);
  view_.setSource(QUrl(QStringLiteral("qrc:/Qml/main.qml")));
  view_.resize(kWindowSize);
  view_.show();
  view_.requestActivate();
  if (!QTest::qWaitForWindowActive(&view_, 20000)) {
    throw std::runtime_error("the scene did not become active");
  }
  if (model != QLatin1String("Orca")) {
    Choose(model);
    // A picture is only taken of a scene whose items have found their places.
    view_.grabWindow();
  }
}

void Screen::Choose(const QString& model) {
  QMetaObject::invokeMethod(view_.rootObject(), "choose",
                            Q_ARG(QVariant, QVariantMap({{"model", model}})));
}

QQuickItem* Screen::Find(const QString& name) const { return FindBelow(view_.contentItem(), name); }

QObject* Screen::FindObject(const QString& name) const {
  return view_.rootObject()->findChild<QObject*>(name);
}

QVariant Screen::Value(const QString& name, const char* property) const {
  const QQuickItem* item = Find(name);
  return item == nullptr ? QVariant() : item->property(property);
}

void Screen::Click(const QString& name) {
  QQuickItem* item = Find(name);
  if (item == nullptr || !item->isEnabled()) {
    throw std::runtime_error("nothing to click called " + name.toStdString());
  }
  // A row below the window is scrolled into it first, as a user would.
  item->forceActiveFocus(Qt::OtherFocusReason);
  const QPointF middle(item->width() / 2, item->height() / 2);
  QTest::mouseClick(&view_, Qt::LeftButton, Qt::NoModifier, item->mapToScene(middle).toPoint());
}

void Screen::Drop(const QString& name, const QList<QUrl>& urls) {
  const QQuickItem* item = Find(name);
  const QPoint place = item->mapToScene(item->boundingRect().center()).toPoint();
  QMimeData files;
  files.setUrls(urls);
  QDragEnterEvent enter(place, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&view_, &enter);
  QDropEvent drop(place, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&view_, &drop);
}

void Screen::Key(int key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(&view_, static_cast<Qt::Key>(key), modifiers);
}

void Screen::TypeInto(const QString& name, const QString& text) {
  Click(name);
  Key(Qt::Key_A, Qt::ControlModifier);
  Type(text);
}

void Screen::Type(const QString& text) {
  for (const QChar letter : text) {
    QTest::keyClick(&view_, letter.toLatin1());
  }
}

QString Screen::FocusName() const { return view_.activeFocusItem()->objectName(); }

bool Screen::IsFocusMarked() const { return HasFocusMark(view_.activeFocusItem()); }

bool Screen::ConnectTo(quint16 port) {
  TypeInto(QStringLiteral("ipField"), QStringLiteral("127.0.0.1"));
  TypeInto(QStringLiteral("portField"), QString::number(port));
  Key(Qt::Key_Return);
  Click(QStringLiteral("connectButton"));
  return WaitFor([this] { return connected() && Find(QStringLiteral("connectionLamp")); });
}

bool Screen::connected() const { return manager_.isConnected(); }

QColor Screen::LampColor() const {
  return Value(QStringLiteral("connectionLamp"), "color").value<QColor>();
}

QString Screen::BoxMessage() const { return Text(QStringLiteral("dialogMessage")); }

bool Screen::WaitForBox(const QString& text) const {
  return WaitFor([&] { return BoxMessage().contains(text); });
}

bool Screen::WaitForNotice(const QString& text) const {
  return WaitFor([&] { return Text(QStringLiteral("noticeText")).contains(text); });
}

bool Screen::Answer(const QString& text, const QString& by) {
  if (!WaitForBox(text)) {
    return false;
  }
  if (by == QLatin1String("Escape")) {
    Key(Qt::Key_Escape);
  } else if (by != QLatin1String("Enter")) {
    Click(by);
  } else if (WaitFor([this] { return Find(QStringLiteral("dialogReject"))->hasActiveFocus(); })) {
    Key(Qt::Key_Return);
  }
  return WaitFor([&] { return !BoxMessage().contains(text); });
}

bool Screen::CloseBox() {
  Click(QStringLiteral("dialogAccept"));
  return WaitFor([this] { return BoxMessage().isEmpty(); });
}

QString Screen::LogText() const {
  QString text;
  QMetaObject::invokeMethod(FindObject(QStringLiteral("logFilter")), "ShownText",
                            Q_RETURN_ARG(QString, text));
  return text;
}
