#include "main_window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>
#include <QVBoxLayout>
#include <memory>

#include "app/message_recorder.h"
#include "startup.h"

namespace {

// The manager exists once in the life of a process, and so does the window in these tests: the
// first builds it, the last takes it down.
class MainWindowTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(QDir::setCurrent(QStringLiteral(TEVRON_TEST_ROOT)));
    QApplication::setPalette(ApplicationPalette());
    const MessageRecorder messages;
    window_ = new MainWindow(nullptr, QStringLiteral("Osprey"));
    window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window_, 10000));
    // Said by the platform that draws nowhere, about every window with a least size.
    warnings_ = messages.warnings();
    warnings_.removeAll(QStringLiteral("This plugin does not support propagateSizeHints()"));
  }

  static QQuickView* View() {
    for (QWindow* window : QGuiApplication::allWindows()) {
      if (auto* view = qobject_cast<QQuickView*>(window)) {
        return view;
      }
    }
    return nullptr;
  }

  static QObject* Manager() {
    return qvariant_cast<QObject*>(View()->rootContext()->contextProperty("tevron_manager"));
  }

  static MainWindow* window_;
  static QStringList warnings_;
};

MainWindow* MainWindowTest::window_ = nullptr;
QStringList MainWindowTest::warnings_;

TEST_F(MainWindowTest, IsBuiltFromNestedLayouts) {
  EXPECT_EQ(window_->objectName(), "MainWindow");
  EXPECT_EQ(window_->windowTitle(), "Tevron");
  ASSERT_NE(window_->centralWidget(), nullptr);
  EXPECT_EQ(window_->centralWidget()->objectName(), "centralWidget");
  auto* outer = qobject_cast<QHBoxLayout*>(window_->centralWidget()->layout());
  ASSERT_NE(outer, nullptr);
  EXPECT_EQ(outer->objectName(), "horizontalLayout");
  EXPECT_EQ(outer->spacing(), 6);
  EXPECT_EQ(outer->contentsMargins(), QMargins(11, 11, 11, 11));
  ASSERT_EQ(outer->count(), 1);
  auto* column = qobject_cast<QVBoxLayout*>(outer->itemAt(0)->layout());
  ASSERT_NE(column, nullptr);
  EXPECT_EQ(column->objectName(), "verticalLayout");
  EXPECT_EQ(column->spacing(), 6);
  ASSERT_EQ(column->count(), 1);
  auto* inner = qobject_cast<QHBoxLayout*>(column->itemAt(0)->layout());
  ASSERT_NE(inner, nullptr);
  EXPECT_EQ(inner->objectName(), "horizontalLayout3D");
  EXPECT_EQ(inner->spacing(), 6);
  ASSERT_EQ(inner->count(), 1);
  EXPECT_EQ(inner->stretch(0), 0);
  EXPECT_EQ(inner->itemAt(0)->alignment(), Qt::Alignment());
}

TEST_F(MainWindowTest, GrowsToTheLeastSizeOfTheScene) {
  QWidget* container = window_->findChild<QHBoxLayout*>("horizontalLayout3D")->itemAt(0)->widget();
  ASSERT_NE(container, nullptr);
  EXPECT_EQ(container->minimumSize(), QSize(1300, 800));
  EXPECT_EQ(container->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding));
  EXPECT_EQ(container->focusPolicy(), Qt::TabFocus);
  EXPECT_GE(window_->width(), 1300 + 22);
  EXPECT_GE(window_->height(), 800 + 22);
  ASSERT_NE(View()->rootObject(), nullptr);
  EXPECT_EQ(View()->rootObject()->size(), QSizeF(container->size()));
}

TEST_F(MainWindowTest, FindsTheManagerFromTheFirstBindingOn) {
  EXPECT_EQ(warnings_.join('\n').toStdString(), "");
  EXPECT_EQ(View()->status(), QQuickView::Ready);
  EXPECT_EQ(View()->source(), QUrl("qrc:/Qml/main.qml"));
  ASSERT_NE(Manager(), nullptr);
  EXPECT_STREQ(Manager()->metaObject()->className(), "TevronManager");
}

TEST_F(MainWindowTest, SelectsTheModelOfTheCommandLine) {
  QString name;
  ASSERT_TRUE(QMetaObject::invokeMethod(Manager(), "getPVNowName", Q_RETURN_ARG(QString, name)));
  EXPECT_EQ(name, "Osprey");
  EXPECT_FALSE(Manager()->property("level1List").toList().isEmpty());
}

TEST_F(MainWindowTest, LastTakesDownTheSceneBeforeTheManager) {
  QStringList order;
  QObject::connect(View(), &QObject::destroyed, [&order] { order << "scene"; });
  QObject::connect(Manager(), &QObject::destroyed, [&order] { order << "manager"; });
  QObject::connect(window_, &QObject::destroyed, [&order] { order << "window"; });
  const MessageRecorder messages;
  delete window_;
  EXPECT_EQ(order.join(' ').toStdString(), "scene manager window");
  EXPECT_EQ(messages.warnings().join('\n').toStdString(), "");
}

}  // namespace
