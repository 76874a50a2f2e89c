#include "Log/logger.h"

#ifdef _WIN32
#define SPDLOG_WCHAR_FILENAMES
#endif

#include <spdlog/async_logger.h>
#include <spdlog/details/thread_pool.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>

#include <array>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <utility>

namespace kavel::lidar {
namespace {

constexpr size_t kQueuedLines = 8192;
constexpr int kNobodyListens = std::numeric_limits<int>::max();

spdlog::level::level_enum SpdlogLevel(LogLevel level) {
  switch (level) {
    case kTrace:
      return spdlog::level::trace;
    case kInfo:
      return spdlog::level::info;
    case kWarning:
      return spdlog::level::warn;
    case kError:
      break;
  }
  return spdlog::level::err;
}

/// Gives this thread the "C" locale for a moment, so that %f writes a decimal point.
#ifndef _WIN32
class PlainNumbers {
 public:
  PlainNumbers() : previous_(uselocale(CLocale())) {}
  ~PlainNumbers() { uselocale(previous_); }
  PlainNumbers(const PlainNumbers&) = delete;
  PlainNumbers& operator=(const PlainNumbers&) = delete;

 private:
  static locale_t CLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
  }

  locale_t previous_;
};
#else
class PlainNumbers {
 public:
  PlainNumbers()
      : scope_(_configthreadlocale(_ENABLE_PER_THREAD_LOCALE)),
        previous_(std::setlocale(LC_NUMERIC, nullptr)) {
    std::setlocale(LC_NUMERIC, "C");
  }
  ~PlainNumbers() {
    std::setlocale(LC_NUMERIC, previous_.c_str());
    _configthreadlocale(scope_);
  }
  PlainNumbers(const PlainNumbers&) = delete;
  PlainNumbers& operator=(const PlainNumbers&) = delete;

 private:
  int scope_;
  std::string previous_;
};
#endif

std::string FormatLine(const char* format, va_list arguments) {
  const PlainNumbers plain_numbers;
  va_list again;
  va_copy(again, arguments);
  std::array<char, 512> short_line;
  const int length = std::vsnprintf(short_line.data(), short_line.size(), format, arguments);
  std::string line;
  if (length > 0 && static_cast<size_t>(length) < short_line.size()) {
    line.assign(short_line.data(), static_cast<size_t>(length));
  } else if (length > 0) {
    line.resize(static_cast<size_t>(length) + 1);
    std::vsnprintf(line.data(), line.size(), format, again);
    line.pop_back();
  }
  va_end(again);
  return line;
}

/// A pipe would hold up whoever opens it.
bool CanBeLogFile(const std::filesystem::path& path) {
  std::error_code ignored;
  const std::filesystem::file_type type = std::filesystem::status(path, ignored).type();
  return type == std::filesystem::file_type::regular ||
         type == std::filesystem::file_type::not_found;
}

}  // namespace

/// The file and the thread that writes it. The thread ends, with the queue written out, when the
/// last user lets go.
struct Logger::File {
  File(const std::filesystem::path& path, LogLevel lowest)
      : threshold(lowest),
        writer(std::make_shared<spdlog::details::thread_pool>(kQueuedLines, 1)),
        log(std::make_shared<spdlog::async_logger>(
            "kavel",
            std::make_shared<spdlog::sinks::rotating_file_sink_mt>(path.native(), kMaxFileBytes,
                                                                   kRotatedFiles),
            writer, spdlog::async_overflow_policy::overrun_oldest)) {
    log->set_level(SpdlogLevel(lowest));
    log->flush_on(spdlog::level::warn);
    log->set_pattern("%Y-%m-%d %H:%M:%S.%e %t %l [%s:%#] %! - %v");
  }

  LogLevel threshold;
  std::shared_ptr<spdlog::details::thread_pool> writer;
  std::shared_ptr<spdlog::async_logger> log;
};

Logger& Logger::GetInstance() {
  static Logger instance;
  return instance;
}

Logger::Logger() : threshold_(kNobodyListens) {}

Logger::~Logger() = default;

void Logger::AddToQueue(LogLevel level, const char* file, int line, const char* function,
                        const char* format, ...) {
  if (level < threshold_.load(std::memory_order_relaxed)) {
    return;
  }
  va_list arguments;
  va_start(arguments, format);
  const std::string text = FormatLine(format, arguments);
  va_end(arguments);

  const std::lock_guard<std::mutex> lock(mutex_);
  if (observer_) {
    observer_(level, text);
  }
  if (file_) {
    file_->log->log(spdlog::source_loc{file, line, function}, SpdlogLevel(level),
                    spdlog::string_view_t(text));
  }
}

bool Logger::SetFile(const std::string& path, LogLevel threshold) {
  std::shared_ptr<File> file;
  const std::filesystem::path place = std::filesystem::u8path(path);
  bool opened = path.empty() || CanBeLogFile(place);
  if (opened && !path.empty()) {
    try {
      file = std::make_shared<File>(place, threshold);
    } catch (const std::exception&) {
      opened = false;
    }
  }
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    file_.swap(file);
    UpdateThreshold();
  }
  return opened;  // the previous file is written out and closed here, outside the lock
}

void Logger::SetObserver(Observer observer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  observer_ = std::move(observer);
  UpdateThreshold();
}

void Logger::Flush() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (file_) {
    file_->log->flush();
  }
}

void Logger::UpdateThreshold() {
  int threshold = kNobodyListens;
  if (file_) {
    threshold = file_->threshold;
  }
  if (observer_) {
    threshold = kTrace;
  }
  threshold_.store(threshold, std::memory_order_relaxed);
}

}  // namespace kavel::lidar
