#pragma once

#include <cstddef>
#include <string>

/// Work with settings that a screen waits for.
enum class SettingsTask { kNone, kSaving, kReading, kComparing, kApplying, kSnapshot };

/// How it stands with the settings.
struct SettingsStatus {
  SettingsTask task = SettingsTask::kNone;
  bool cancelling = false;
  size_t done = 0;  ///< commands
  size_t all = 0;   ///< 0 while that is not known
  /// What the last task brought, one or two sentences; "" while one runs and before the first.
  std::string outcome;
  bool failed = false;
};
