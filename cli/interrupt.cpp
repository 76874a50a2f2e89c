#include "interrupt.h"

#include <signal.h>
#include <unistd.h>

#include <utility>

#include "failure.h"

namespace {

/// Ends the thread that waits for the others.
constexpr int kWakeSignal = SIGUSR1;

sigset_t HandledSignals() {
  sigset_t handled;
  sigemptyset(&handled);
  sigaddset(&handled, SIGINT);
  sigaddset(&handled, SIGTERM);
  sigaddset(&handled, kWakeSignal);
  return handled;
}

}  // namespace

Interrupt::Interrupt() {
  const sigset_t handled = HandledSignals();
  pthread_sigmask(SIG_BLOCK, &handled, nullptr);
  thread_ = std::thread([this] { Listen(); });
}

Interrupt::~Interrupt() {
  ending_ = true;
  pthread_kill(thread_.native_handle(), kWakeSignal);
  thread_.join();
}

void Interrupt::Listen() {
  const sigset_t handled = HandledSignals();
  int number = 0;
  while (sigwait(&handled, &number) == 0 && !ending_) {
    if (raised_.exchange(true)) {
      _exit(static_cast<int>(ExitCode::kInterrupted));
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    if (action_) {
      action_();
    }
  }
}

void Interrupt::ThrowIfRaised() const {
  if (raised_) {
    throw Failure(ExitCode::kInterrupted, "interrupted");
  }
}

void Interrupt::SetAction(std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(mutex_);
  action_ = std::move(action);
  if (action_ && raised_) {
    action_();
  }
}
