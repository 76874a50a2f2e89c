#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace kavel::lidar {

/// The numbers are part of the logging contract.
enum LogLevel : int {
  kTrace = 1,
  kInfo = 2,
  kWarning = 4,
  kError = 8,
};

#if defined(__GNUC__)
#define KAVEL_PRINTF_FORMAT(format_index, first_argument) \
  __attribute__((format(printf, format_index, first_argument)))
#define KAVEL_FUNCTION __PRETTY_FUNCTION__
#else
#define KAVEL_PRINTF_FORMAT(format_index, first_argument)
#define KAVEL_FUNCTION __FUNCSIG__
#endif

/// The log of the device library: lines go to a file through a thread of their own, so that a slow
/// disk never holds up an exchange. Until a file is set nothing is written anywhere.
///
/// All members may be called on any thread. Never hand a secret to it.
class Logger {
 public:
  /// Sees every line, of every level, on the thread that logs it. It must not log itself.
  using Observer = std::function<void(LogLevel level, const std::string& text)>;

  static constexpr size_t kMaxFileBytes = size_t{5} * 1024 * 1024;
  static constexpr size_t kRotatedFiles = 3;  ///< kept beside the current one: name.1.ext ...

  static Logger& GetInstance();

  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;

  /// Queues one line. `file` and `function` must live as long as the program (literals). `format`
  /// is printf's; numbers are written with a decimal point whatever the user's locale. When lines
  /// come faster than the disk takes them, the oldest queued ones are dropped.
  void AddToQueue(LogLevel level, const char* file, int line, const char* function,
                  const char* format, ...) KAVEL_PRINTF_FORMAT(6, 7);

  /// Writes from now on to `path` (UTF-8), whose folder is created; "" stops writing. Lines below
  /// `threshold` are left out. False when the file cannot be opened: then nothing is written.
  bool SetFile(const std::string& path, LogLevel threshold = kInfo);

  /// Installs the observer, or removes it when it is empty. Once this returns, the previous one is
  /// no longer called.
  void SetObserver(Observer observer);

  /// Asks the writing thread to bring what is queued to the file.
  void Flush();

 private:
  struct File;

  Logger();
  ~Logger();
  void UpdateThreshold();

  std::mutex mutex_;
  Observer observer_;
  std::shared_ptr<File> file_;
  /// The lowest level that anybody wants to see; lines below it are not even formatted.
  std::atomic<int> threshold_;
};

}  // namespace kavel::lidar

/// Logs one line with the place where it stands: KAVEL_LOG(kavel::lidar::kInfo, "port %u", port).
#define KAVEL_LOG(level, ...)                                                                   \
  ::kavel::lidar::Logger::GetInstance().AddToQueue((level), __FILE__, __LINE__, KAVEL_FUNCTION, \
                                                   __VA_ARGS__)
