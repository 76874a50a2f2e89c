#include "console_report.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "output.h"

namespace {

constexpr int kBarWidth = 32;
constexpr char kWipe[] = "\r\x1b[K";

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

}  // namespace

ConsoleReport::ConsoleReport(Loudness loudness)
    : loudness_(loudness),
      is_terminal_(isatty(STDERR_FILENO) != 0),
      has_colour_(is_terminal_ && std::getenv("NO_COLOR") == nullptr),
      shows_progress_(is_terminal_ && loudness != Loudness::kQuiet) {}

void ConsoleReport::Error(const std::string& text) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!text.empty()) {
    errors_.push_back(FirstLine(text));
  }
}

void ConsoleReport::Success(const std::string& text) {
  if (!text.empty() && loudness_ == Loudness::kVerbose) {
    Write(FirstLine(text), Colour::kNone);
  }
}

void ConsoleReport::LogLine(const std::string& text, LogType type) {
  if (loudness_ == Loudness::kVerbose) {
    Write(std::string("[") + LogTypeName(type) + "] " + text, Colour::kNone);
  } else if (type == LogType::kWarning && loudness_ == Loudness::kNormal) {
    Write("warning: " + text, Colour::kYellow);
  } else if (type == LogType::kError && loudness_ == Loudness::kNormal) {
    Write(text, Colour::kYellow);
  }
}

void ConsoleReport::Note(const std::string& text) {
  if (loudness_ != Loudness::kQuiet) {
    Write(text, Colour::kNone);
  }
}

void ConsoleReport::Fatal(const std::string& text) { Write(text, Colour::kRed); }

std::string ConsoleReport::TakeError(const std::string& fallback) {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::string text = errors_.empty() ? fallback : errors_.back();
  errors_.clear();
  return text;
}

void ConsoleReport::ShowErrors() {
  std::vector<std::string> errors;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    errors.swap(errors_);
  }
  for (const std::string& text : errors) {
    Write(text, Colour::kYellow);
  }
}

void ConsoleReport::Progress(const std::string& what, uint64_t done, uint64_t all) {
  if (!shows_progress_ || all == 0) {
    return;
  }
  done = std::min(done, all);
  const auto filled = static_cast<size_t>(kBarWidth * done / all);
  const std::lock_guard<std::mutex> lock(mutex_);
  std::cerr << kWipe << Printable(what) << " [" << std::string(filled, '#')
            << std::string(kBarWidth - filled, '.') << "] " << 100 * done / all << " %"
            << std::flush;
  is_drawn_ = true;
}

void ConsoleReport::EndProgress() {
  const std::lock_guard<std::mutex> lock(mutex_);
  Wipe();
}

void ConsoleReport::Wipe() {
  if (is_drawn_) {
    std::cerr << kWipe << std::flush;
    is_drawn_ = false;
  }
}

void ConsoleReport::Write(const std::string& text, Colour colour) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Wipe();
  const bool is_plain = !has_colour_ || colour == Colour::kNone;
  const char* const begin = is_plain ? "" : colour == Colour::kRed ? "\x1b[31m" : "\x1b[33m";
  std::cerr << begin << "tevronctl: " << Printable(text) << (is_plain ? "" : "\x1b[0m")
            << std::endl;
}
