#pragma once

#include <QtTest/QTest>
#include <functional>

/// Waits until the condition holds, with the events of this thread handled; false when it did not
/// within `bound_ms`.
inline bool WaitFor(const std::function<bool()>& condition, int bound_ms = 20000) {
  return QTest::qWaitFor(condition, bound_ms);
}
