// Starts the program again and again on the present display and measures, from outside, how long
// it takes until its window has content, and how much memory it holds then. The program itself is
// measured as it ships: nothing in it knows of this.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

// Last, because they define words such as Success as macros.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kPollInterval = std::chrono::milliseconds(2);
constexpr auto kPatience = std::chrono::seconds(30);
// A bare window shows one or two colours; text and controls bring dozens.
constexpr size_t kColoursOfContent = 16;
constexpr int kSampleStep = 3;

struct Measurement {
  double first_paint_ms;
  double resident_mb;
};

/// The program as a child process; it is ended when this goes.
class Program {
 public:
  explicit Program(const std::string& path) {
    std::string name = path;
    char* argv[] = {name.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const int failure = posix_spawn(&pid_, path.c_str(), &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
      throw std::runtime_error("cannot start " + path);
    }
  }
  ~Program() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  double ResidentMb() const {
    std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.rfind("VmRSS:", 0) == 0) {
        return std::stod(line.substr(6)) / 1024.0;
      }
    }
    return 0;
  }

 private:
  pid_t pid_ = -1;
};

class Picture {
 public:
  Picture() : display_(XOpenDisplay(nullptr)) {
    if (!display_) {
      throw std::runtime_error("no display: run this below xvfb-run");
    }
  }

  /// Whether anything but plain surfaces is on the screen. Counts colours on a grid of points.
  bool HasContent() const {
    Display* display = display_.get();
    const int screen = DefaultScreen(display);
    const auto width = static_cast<unsigned>(DisplayWidth(display, screen));
    const auto height = static_cast<unsigned>(DisplayHeight(display, screen));
    const std::unique_ptr<XImage, int (*)(XImage*)> image(
        XGetImage(display, DefaultRootWindow(display), 0, 0, width, height, AllPlanes, ZPixmap),
        [](XImage* one) { return XDestroyImage(one); });
    std::set<unsigned long> colours;
    for (int y = 0; image && y < image->height; y += kSampleStep) {
      for (int x = 0; x < image->width; x += kSampleStep) {
        colours.insert(XGetPixel(image.get(), x, y));
      }
      if (colours.size() >= kColoursOfContent) {
        return true;
      }
    }
    return false;
  }

 private:
  struct Closer {
    void operator()(Display* display) const { XCloseDisplay(display); }
  };
  std::unique_ptr<Display, Closer> display_;
};

template <typename Condition>
bool Wait(Condition condition) {
  const auto deadline = Clock::now() + kPatience;
  while (!condition()) {
    if (Clock::now() > deadline) {
      return false;
    }
    std::this_thread::sleep_for(kPollInterval);
  }
  return true;
}

std::optional<Measurement> MeasureOnce(const Picture& screen, const std::string& path) {
  if (!Wait([&] { return !screen.HasContent(); })) {
    return std::nullopt;
  }
  const auto start = Clock::now();
  const Program program(path);
  if (!Wait([&] { return screen.HasContent(); })) {
    return std::nullopt;
  }
  const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
  return Measurement{elapsed.count(), program.ResidentMb()};
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void Report(const char* name, const char* unit, const std::vector<double>& values) {
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  std::printf("%-24s median %7.1f %s   least %7.1f   most %7.1f   (%zu starts)\n", name,
              Median(values), unit, *least, *most, values.size());
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App options("Time from process start to the first painted window, and resident memory");
  std::string path;
  int starts = 10;
  options.add_option("program", path, "The program to start")->required()->check(CLI::ExistingFile);
  options.add_option("--starts", starts, "How often")->check(CLI::Range(1, 1000));
  CLI11_PARSE(options, argc, argv);
  try {
    const Picture screen;
    std::vector<double> first_paint_ms;
    std::vector<double> resident_mb;
    for (int i = 0; i < starts; ++i) {
      const auto measured = MeasureOnce(screen, path);
      if (!measured) {
        std::fprintf(stderr, "the window did not appear, or the screen was not empty before\n");
        return 1;
      }
      first_paint_ms.push_back(measured->first_paint_ms);
      resident_mb.push_back(measured->resident_mb);
    }
    Report("first painted window", "ms", first_paint_ms);
    Report("resident memory", "MB", resident_mb);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "startup_time: %s\n", error.what());
    return 1;
  }
  return 0;
}
