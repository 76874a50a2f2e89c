#include <gtest/gtest.h>

#include <QFile>
#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <QStringList>
#include <thread>

#include "tevron_manager.h"

namespace {

const QMetaObject& Meta() { return TevronManager::staticMetaObject; }

QString Declaration(const QMetaMethod& method) {
  QStringList arguments;
  for (int i = 0; i < method.parameterCount(); ++i) {
    arguments << QString(method.parameterTypes()[i] + ' ' + method.parameterNames()[i]).trimmed();
  }
  const char* const kind = method.methodType() == QMetaMethod::Signal ? "signal " : "";
  return kind + QString("%1 %2(%3)").arg(method.typeName(), method.name(), arguments.join(", "));
}

QString Declaration(const QMetaProperty& property) {
  EXPECT_TRUE(property.isReadable());
  QString text = QString("%1 %2").arg(property.typeName(), property.name());
  if (property.isWritable()) {
    text += " RW";
  }
  if (property.hasNotifySignal()) {
    text += ' ' + property.notifySignal().name();
  }
  return text;
}

// The file names signals, methods and properties, each in the order of its index. "RW" means
// writable; behind it stands the change signal, where there is one.
TEST(ManagerSurface, DeclaresExactlyWhatTheScreensAddressInThatOrder) {
  QStringList got;
  for (int i = Meta().methodOffset(); i < Meta().methodCount(); ++i) {
    EXPECT_EQ(Meta().method(i).access(), QMetaMethod::Public);
    got << Declaration(Meta().method(i));
  }
  for (int i = Meta().propertyOffset(); i < Meta().propertyCount(); ++i) {
    got << Declaration(Meta().property(i));
  }
  QFile file(MANAGER_SURFACE);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QStringList want = QString(file.readAll()).split('\n', Qt::SkipEmptyParts);
  ASSERT_EQ(got.size(), want.size());
  for (int i = 0; i < want.size(); ++i) {
    EXPECT_EQ(got[i], want[i]) << "line " << i + 1;
  }
}

TEST(ManagerSurface, MayBeUsedOnItsOwnThreadAlone) {
#ifndef TEVRON_THREAD_CHECKS
  GTEST_SKIP() << "this build does not look";
#endif
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  TevronManager manager(true, "./Config/varID/Orca.csv");
  EXPECT_FALSE(manager.property("IsConnected").toBool());
  const auto elsewhere = [](const auto& use) { std::thread(use).join(); };
  EXPECT_DEATH(elsewhere([&] { manager.property("IsConnected"); }),
               "A TevronManager is used on a thread that is not its own");
  EXPECT_DEATH(
      elsewhere([&] { QMetaObject::invokeMethod(&manager, "Stop", Qt::DirectConnection); }),
      "A TevronManager is used on a thread that is not its own");
}

}  // namespace
