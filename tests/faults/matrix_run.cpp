#include "faults/matrix_run.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <algorithm>
#include <cstdio>
#include <memory>

#include "support/owned_process.h"
#include "support/qt_wait_for.h"

namespace {

constexpr int kMostMs = 120000;  // of one cell
constexpr char kResultMark[] = "\nresult ";

/// One cell in its process.
class Trial {
 public:
  explicit Trial(const Cell& cell) : cell_(cell) {
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.start(QCoreApplication::applicationFilePath(), {"--cell", cell.Name()});
    taken_.start();
  }

  bool HasEnded() {
    if (taken_.elapsed() > kMostMs) {
      process_.kill();
    }
    return process_.state() == QProcess::NotRunning;
  }

  Result Take() {
    const QByteArray output = process_.readAll();
    const QByteArray told =
        output.mid(output.lastIndexOf(kResultMark) + int(sizeof kResultMark) - 1);
    const QJsonDocument json = QJsonDocument::fromJson(told.left(told.indexOf('\n')));
    Finding finding = Finding::FromJson(json.object());
    if (process_.exitStatus() != QProcess::NormalExit || !json.isObject()) {
      finding.faults << "the program came to a bad end: " + QString(output.right(4000));
    }
    return {cell_, finding, taken_.elapsed()};
  }

 private:
  const Cell cell_;
  OwnedProcess process_;
  QElapsedTimer taken_;
};

void Tell(const Result& result) {
  const Finding& finding = result.finding;
  const QString line =
      QString("%1 %2: %3, %4 ms\n")
          .arg(finding.faults.isEmpty() ? "good" : "BAD ", result.cell.Name(), finding.outcome)
          .arg(finding.gap_ms);
  std::fputs(qPrintable(line), stderr);
  for (const QString& fault : finding.faults) {
    std::fputs(qPrintable("     " + fault + '\n'), stderr);
  }
  if (!finding.faults.isEmpty()) {
    std::fputs(qPrintable("     told: " + finding.told.join("; ") + '\n' + finding.scene), stderr);
  }
}

/// A text in a cell of a Markdown table.
QString InTable(QString text) { return text.replace('|', "\\|").replace('\n', ' '); }

}  // namespace

std::vector<Result> RunCells(const std::vector<Cell>& cells, int jobs) {
  std::vector<Result> results;
  std::vector<std::unique_ptr<Trial>> running;
  auto next = cells.begin();
  while (next != cells.end() || !running.empty()) {
    while (next != cells.end() && static_cast<int>(running.size()) < jobs) {
      running.push_back(std::make_unique<Trial>(*next));
      ++next;
    }
    const auto has_ended = [](const auto& trial) { return trial->HasEnded(); };
    WaitFor([&] { return std::any_of(running.begin(), running.end(), has_ended); }, 1000);
    for (auto trial = running.begin(); trial != running.end();) {
      if ((*trial)->HasEnded()) {
        results.push_back((*trial)->Take());
        Tell(results.back());
        trial = running.erase(trial);
      } else {
        ++trial;
      }
    }
  }
  return results;
}

QString MarkdownOf(const std::vector<Result>& results) {
  const auto is_bad = [](const Result& result) { return !result.finding.faults.isEmpty(); };
  const auto bad = std::count_if(results.begin(), results.end(), is_bad);
  qint64 gap_ms = 0;
  double memory_mib = 0;
  for (const Result& result : results) {
    gap_ms = std::max(gap_ms, result.finding.gap_ms);
    memory_mib = std::max(memory_mib, result.finding.memory_mib);
  }
  QString text = QString(
                     "%1 cells, %2 of them bad. The longest gap of the event loop: %3 ms. The "
                     "most memory: %4 MiB.\n\n")
                     .arg(results.size())
                     .arg(bad)
                     .arg(gap_ms)
                     .arg(memory_mib, 0, 'f', 1);
  text +=
      "| link | operation | fault | outcome | longest gap (quiet), ms | memory, MiB | back after, "
      "ms | "
      "the user is told | wrong |\n|---|---|---|---|---|---|---|---|---|\n";
  for (const auto& [cell, finding, took_ms] : results) {
    text += QString("| %1 | %2 | %3 | %4 | %5 (%6) | %7 | %8 |")
                .arg(cell.link->name, cell.operation->name, cell.fault->name, finding.outcome)
                .arg(finding.gap_ms)
                .arg(finding.quiet_ms)
                .arg(finding.memory_mib, 0, 'f', 1)
                .arg(finding.recovery_ms);
    text += QString(" %1 | %2 |\n")
                .arg(InTable(finding.told.join("; ")), InTable(finding.faults.join("; ")));
  }
  return text;
}
