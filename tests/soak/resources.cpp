#include "soak/resources.h"

#include <malloc.h>

#include <QDir>
#include <QFile>
#include <stdexcept>

namespace {

// An arena keeps a part of what was given back, and how much depends on which thread came first.
constexpr qint64 kMemorySlackKib = 4096;
// Caches of fixed size, each thread's among them, fill at their own pace, and never quite.
constexpr qint64 kHeapSlackKib = 1024;

qint64 Figure(const QByteArray& status, const QByteArray& name) {
  const int at = status.indexOf('\n' + name + ':');
  return at < 0 ? 0 : status.mid(at + name.size() + 2).simplified().split(' ').first().toLongLong();
}

Resources Read(const QString& folder) {
  QFile file(folder + "/status");
  if (!file.open(QIODevice::ReadOnly)) {
    throw std::runtime_error("there is no " + file.fileName().toStdString());
  }
  const QByteArray status = file.readAll();
  file.close();
  Resources resources;
  resources.memory_kib = Figure(status, "RssAnon");
  resources.threads = static_cast<int>(Figure(status, "Threads"));
  const QDir::Filters all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
  resources.descriptors = QDir(folder + "/fd").entryList(all).size();
  return resources;
}

}  // namespace

Resources OwnResources() {
  malloc_trim(0);
  Resources resources = Read("/proc/self");
  const struct mallinfo2 heap = mallinfo2();
  resources.heap_kib = static_cast<qint64>((heap.uordblks + heap.hblkhd) / 1024);
  return resources;
}

Resources ResourcesOf(qint64 process_id) { return Read("/proc/" + QString::number(process_id)); }

QString Growth(const Resources& before, const Resources& after) {
  if (after.descriptors != before.descriptors) {
    return QString("%1 descriptors, and %2 before").arg(after.descriptors).arg(before.descriptors);
  }
  if (after.threads != before.threads) {
    return QString("%1 threads, and %2 before").arg(after.threads).arg(before.threads);
  }
#ifndef __SANITIZE_ADDRESS__  // which keeps what is freed, and finds leaks by itself
  if (after.memory_kib > before.memory_kib + kMemorySlackKib) {
    return QString("%1 KiB of memory, and %2 before").arg(after.memory_kib).arg(before.memory_kib);
  }
  if (after.heap_kib > before.heap_kib + kHeapSlackKib) {
    return QString("%1 KiB allocated, and %2 before").arg(after.heap_kib).arg(before.heap_kib);
  }
#endif
  return {};
}
