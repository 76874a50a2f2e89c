#pragma once

#include <QObject>
#include <QThread>
#include <memory>
#include <utility>

/// What an object has and uses on its own thread alone: any use on another one ends the program
/// with a sentence. Without TEVRON_THREAD_CHECKS it is no more than the pointer.
template <typename T>
class OnOwnThread {
 public:
  /// `owner` outlives it.
  OnOwnThread(const QObject& owner, std::unique_ptr<T> value)
      : owner_(owner), value_(std::move(value)) {}

  T* operator->() const {
#ifdef TEVRON_THREAD_CHECKS
    if (owner_.thread() != QThread::currentThread()) {
      qFatal("A %s is used on a thread that is not its own.", owner_.metaObject()->className());
    }
#endif
    return value_.get();
  }

 private:
  [[maybe_unused]] const QObject& owner_;
  const std::unique_ptr<T> value_;
};
