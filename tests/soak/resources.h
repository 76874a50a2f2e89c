#pragma once

#include <QString>
#include <QtGlobal>

/// What a process has taken from the system, and gives back when it ends at the latest.
struct Resources {
  qint64 memory_kib = 0;  ///< resident and its own; pages of files that it runs are not in it
  qint64 heap_kib = 0;    ///< of that what is allocated now; 0 for another process than this one
  int descriptors = 0;
  int threads = 0;
};

/// Of this process. What is free goes back to the system before, so that its size tells nothing of
/// what was needed for a moment.
Resources OwnResources();

/// Of another process. Throws std::runtime_error when there is none.
Resources ResourcesOf(qint64 process_id);

/// Why the resources at the end are more than those before; empty when they are not. Descriptors
/// and threads have to be the same, memory may have grown by the slack of a resident set.
QString Growth(const Resources& before, const Resources& after);
