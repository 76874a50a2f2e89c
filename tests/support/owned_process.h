#pragma once

#include <signal.h>
#include <sys/prctl.h>

#include <QProcess>

/// A program that does not outlive the thread that started it, not even when that is killed.
class OwnedProcess : public QProcess {
 protected:
  void setupChildProcess() override { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }
};
