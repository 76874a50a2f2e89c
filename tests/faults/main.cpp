// Tries every operation over every link with every fault of the lidar, or some of them.

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <clocale>
#include <cstdio>
#include <string>
#include <vector>

#include "faults/matrix_run.h"
#include "support/throwaway_home.h"

namespace {

struct Options {
  std::string filter;
  std::string table;
  int jobs = 2;
  bool is_short = false;
  bool only_lists = false;
  std::string cell;
};

std::vector<Cell> Chosen(const Options& options) {
  const QRegularExpression filter(QString::fromStdString(options.filter));
  std::vector<Cell> chosen;
  for (const Cell& cell : options.is_short ? ShortForm() : AllCells()) {
    if (filter.match(cell.Name()).hasMatch()) {
      chosen.push_back(cell);
    }
  }
  return chosen;
}

int TryOne(const Options& options) {
  const ThrowawayHome home;
  for (const Cell& cell : AllCells()) {
    if (cell.Name() == QString::fromStdString(options.cell)) {
      Bench bench;
      const QJsonDocument json(TryCell(cell, bench).ToJson());
      std::printf("\nresult %s\n", json.toJson(QJsonDocument::Compact).constData());
      return 0;
    }
  }
  return 2;
}

int TryMany(const Options& options) {
  const std::vector<Cell> cells = Chosen(options);
  if (cells.empty()) {
    std::fprintf(stderr, "no cell matches %s\n", options.filter.c_str());
    return 2;
  }
  const std::vector<Result> results = RunCells(cells, options.jobs);
  const QString text = MarkdownOf(results);
  std::fputs(qPrintable(text.section('\n', 0, 0) + '\n'), stdout);
  if (!options.table.empty()) {
    QFile file(QString::fromStdString(options.table));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) {
      std::fprintf(stderr, "%s cannot be written\n", options.table.c_str());
      return 2;
    }
  }
  for (const Result& result : results) {
    if (!result.finding.faults.isEmpty()) {
      return 1;
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app(
      "Tries operations over links with a lidar that misbehaves. Ends with 1 when one of "
      "them went wrong.");
  app.add_option("FILTER", options.filter,
                 "Only the cells LINK/OPERATION/FAULT that this regular expression is found in");
  app.add_option("--table", options.table, "Write the outcome to this file, as Markdown");
  app.add_option("--jobs", options.jobs, "So many at a time")->check(CLI::Range(1, 64));
  app.add_flag("--short", options.is_short,
               "Each fault over a network and a serial line, and a few cells more");
  app.add_flag("--list", options.only_lists, "Only name the cells");
  app.add_option("--cell", options.cell, "Try this one in this process")->group("");
  CLI11_PARSE(app, argc, argv);

  const QCoreApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  if (options.only_lists) {
    for (const Cell& cell : Chosen(options)) {
      std::puts(qPrintable(cell.Name()));
    }
    return 0;
  }
  return options.cell.empty() ? TryMany(options) : TryOne(options);
}
