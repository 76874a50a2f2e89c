#pragma once

#include <QByteArray>
#include <QFile>

/// The most memory since Begin, above what it was then.
class MemoryWatch {
 public:
  void Begin() {
    QFile reset("/proc/self/clear_refs");
    if (reset.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
      reset.write("5");  // the peak begins anew
    }
    before_kib_ = FieldKib("VmRSS:");
  }
  double MostMib() const { return double(FieldKib("VmHWM:") - before_kib_) / 1024; }

  /// A sanitizer keeps what was freed.
  static bool IsMeaningful() {
#ifdef __SANITIZE_ADDRESS__
    return false;
#else
    return true;
#endif
  }

 private:
  static qint64 FieldKib(const QByteArray& field) {
    QFile status("/proc/self/status");
    status.open(QIODevice::ReadOnly);
    const QByteArray text = status.readAll();
    return text.mid(text.indexOf(field) + field.size()).simplified().split(' ')[0].toLongLong();
  }

  qint64 before_kib_ = 0;
};
