#include "main_window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>

#include "app/message_recorder.h"
#include "startup.h"

namespace {

QQuickView* SceneView() {
  for (QWindow* window : QGuiApplication::allWindows()) {
    if (auto* view = qobject_cast<QQuickView*>(window)) {
      return view;
    }
  }
  return nullptr;
}

// The manager exists once in the life of a process, and so does the window: one test goes from its
// first binding to its end.
TEST(MainWindowTest, HostsTheSceneAndTakesItDownBeforeTheManager) {
  ASSERT_TRUE(QDir::setCurrent(QStringLiteral(TEVRON_TEST_ROOT)));
  QApplication::setPalette(ApplicationPalette());
  const MessageRecorder messages;
  const auto warnings = [&messages] {
    QStringList all = messages.warnings();
    // Said by the platform that draws nowhere, about every window with a least size.
    all.removeAll(QStringLiteral("This plugin does not support propagateSizeHints()"));
    return all.join('\n').toStdString();
  };
  auto* window = new MainWindow(nullptr, QStringLiteral("Osprey"));
  window->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window, 10000));
  EXPECT_EQ(warnings(), "") << "the bindings find the manager from the first one on";
  EXPECT_EQ(window->windowTitle(), "Tevron");

  const auto* layout = window->findChild<QHBoxLayout*>("horizontalLayout3D");
  ASSERT_NE(layout, nullptr);
  const QWidget* container = layout->itemAt(0)->widget();
  EXPECT_EQ(container->minimumSize(), QSize(1300, 800));
  EXPECT_EQ(container->focusPolicy(), Qt::TabFocus);
  EXPECT_GE(window->width(), 1300 + 22) << "the window grows to the scene and its margins";
  QQuickView* view = SceneView();
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->source(), QUrl("qrc:/Qml/main.qml"));
  EXPECT_EQ(view->rootObject()->size(), QSizeF(container->size()));

  auto* manager = qvariant_cast<QObject*>(view->rootContext()->contextProperty("tevron_manager"));
  ASSERT_NE(manager, nullptr);
  QString model;
  ASSERT_TRUE(QMetaObject::invokeMethod(manager, "getPVNowName", Q_RETURN_ARG(QString, model)));
  EXPECT_EQ(model, "Osprey");
  const auto* model_choice = view->rootObject()->findChild<QQuickItem*>("modelChoice");
  ASSERT_NE(model_choice, nullptr);
  EXPECT_FALSE(model_choice->isEnabled()) << "the command line has fixed the model";

  QStringList order;
  QObject::connect(view, &QObject::destroyed, [&order] { order << "scene"; });
  QObject::connect(manager, &QObject::destroyed, [&order] { order << "manager"; });
  QObject::connect(window, &QObject::destroyed, [&order] { order << "window"; });
  delete window;
  EXPECT_EQ(order.join(' ').toStdString(), "scene manager window");
  EXPECT_EQ(warnings(), "");
}

}  // namespace
