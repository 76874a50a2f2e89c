// The manager against virtual lidars for as long as wanted, with faults in between: whether what is
// shown stays true, and whether anything grows.

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <clocale>
#include <iostream>
#include <random>
#include <string>

#include "soak/rounds.h"
#include "support/throwaway_home.h"

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;
using AllResources = std::map<QString, Resources>;

struct Options {
  double minutes = 5;
  unsigned seed = std::random_device()();
  int fault_every = 10;
  std::string cells;
};

/// A moment whose resources stand in the table.
struct Moment {
  QString name;
  AllResources resources;
};

/// One line for each process that needs more than before.
QString Growths(const AllResources& before, const AllResources& after) {
  QString all;
  for (const auto& [process, resources] : after) {
    const QString growth = Growth(before.at(process), resources);
    all += growth.isEmpty() ? "" : process + ": " + growth + '\n';
  }
  return all;
}

class Run {
 public:
  Run(const Options& options, std::ostream& out)
      : options_(options),
        out_(out),
        rounds_(options.seed, QRegularExpression(QString::fromStdString(options.cells))) {}

  /// Throws RoundFailed when a round fails, or something grows.
  void ToTheEnd() {
    // Every cell has had its turn, and whatever is made once and kept is there.
    Until([this] { return Elapsed() >= warm_up_ && rounds_.HasTriedAll(); });
    moments_.push_back({QString("round %1").arg(done_), rounds_.AtRest({})});
    const size_t warm = done_;
    Until([&] { return Elapsed() >= all_ && done_ >= 2 * warm; });
    Measure();
    moments_.push_back({QString("round %1").arg(done_), now_});
    Require();
  }

  void Print() const {
    if (moments_.empty()) {
      return;
    }
    out_ << "\n| process | at | memory, KiB | allocated, KiB | descriptors | threads |\n"
            "|---|---|---|---|---|---|\n";
    for (const auto& [process, unused] : moments_.front().resources) {
      for (const Moment& moment : moments_) {
        const Resources& one = moment.resources.at(process);
        out_ << "| " << process.toStdString() << " | " << moment.name.toStdString() << " | "
             << one.memory_kib << " | " << (one.heap_kib == 0 ? "" : std::to_string(one.heap_kib))
             << " | " << one.descriptors << " | " << one.threads << " |\n";
      }
    }
    out_ << "\n| fault | rounds |\n|---|---|\n";
    for (const auto& [fault, count] : rounds_.counts()) {
      out_ << "| " << fault.toStdString() << " | " << count << " |\n";
    }
    out_ << "\n"
         << done_ << " rounds in " << static_cast<int>(Elapsed().count()) << " s, seed "
         << options_.seed << std::endl;
  }

 private:
  Seconds Elapsed() const { return Clock::now() - began_; }

  template <typename Condition>
  void Until(const Condition& is_over) {
    while (!is_over()) {
      rounds_.Run(++done_ % static_cast<size_t>(options_.fault_every) == 0);
      TellEveryMinute();
      // Leaves most of the machine to others.
      QTest::qWait(kPauseMs);
    }
  }

  void TellEveryMinute() {
    if (Elapsed() < next_line_) {
      return;
    }
    next_line_ += std::chrono::minutes(1);
    Measure();
    const Resources& own = now_.at("Tevron");
    out_ << static_cast<int>(Elapsed().count() / 60) << " min: " << done_ << " rounds, "
         << own.memory_kib << " KiB, " << own.heap_kib << " KiB allocated, " << own.descriptors
         << " descriptors, " << own.threads << " threads" << std::endl;
    Require();
  }

  // A moment later what has not ended yet has.
  void Measure() {
    now_ = rounds_.AtRest(moments_.empty() ? AllResources() : moments_[0].resources);
  }

  void Require() const {
    const QString growth = moments_.empty() ? "" : Growths(moments_[0].resources, now_);
    if (!growth.isEmpty()) {
      throw RoundFailed("more than at " + moments_[0].name.toStdString() + ":\n" +
                        growth.toStdString());
    }
  }

  static constexpr int kPauseMs = 150;

  const Options options_;
  std::ostream& out_;
  const Seconds all_ = std::chrono::duration<double, std::ratio<60>>(options_.minutes);
  const Seconds warm_up_ = std::min<Seconds>(std::chrono::minutes(1), all_ / 3);
  const Clock::time_point began_ = Clock::now();
  Seconds next_line_ = std::chrono::minutes(1);
  Rounds rounds_;
  size_t done_ = 0;
  AllResources now_;
  std::vector<Moment> moments_;  ///< when it was warm, the end
};

int ReadOptions(int argc, char** argv, Options* options) {
  CLI::App app("The manager against virtual lidars, round for round, until the time is over.",
               "soak");
  app.add_option("MINUTES", options->minutes, "How long")
      ->check(CLI::Range(0.1, 10000.0).description(""))
      ->capture_default_str();
  app.add_option("--seed", options->seed, "Faults and values as in the run that told this seed");
  app.add_option("--fault-every", options->fault_every, "So many rounds to one with a fault")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  app.add_option("--cells", options->cells,
                 "Only the cells of the fault matrix that this regular expression is found in");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    app.exit(error);
    return error.get_exit_code() == 0 ? 0 : 2;
  }
  return -1;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  const int end = ReadOptions(argc, argv, &options);
  if (end >= 0) {
    return end;
  }
  const ThrowawayHome home;
  const QCoreApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  // What the manager prints for a terminal would bury the rest.
  std::ostream out(std::cout.rdbuf(nullptr));
  std::cerr.rdbuf(nullptr);
  out << "seed " << options.seed << std::endl;
  try {
    Run run(options, out);
    try {
      run.ToTheEnd();
      run.Print();
    } catch (const RoundFailed&) {
      run.Print();
      throw;
    }
  } catch (const std::exception& failure) {
    out << "\nfailed: " << failure.what() << std::endl;
    return 1;
  }
  return 0;
}
