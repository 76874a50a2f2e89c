#include "soak/rounds.h"

#include <algorithm>

#include "faults/trial.h"

Rounds::Rounds(unsigned seed, const QRegularExpression& wanted) : random_(seed) {
  for (const Cell& cell : AllCells()) {
    if (wanted.match(cell.Name()).hasMatch() && cell.fault->act == Act::kNone &&
        QString(cell.operation->name) != "upgrade") {
      (cell.is_quiet() ? quiet_ : faulty_).all.push_back(cell);
    }
  }
  if (quiet_.all.empty() || faulty_.all.empty()) {
    throw RoundFailed("there are no such cells");
  }
}

void Rounds::Run(bool with_fault) {
  Deck& deck = with_fault ? faulty_ : quiet_;
  if (deck.left.empty()) {
    deck.left = deck.all;
  }
  // The library's distributions differ from one to the next; the remainder is the same everywhere.
  const auto drawn = deck.left.begin() + static_cast<std::ptrdiff_t>(random_() % deck.left.size());
  const Cell cell = *drawn;
  deck.left.erase(drawn);
  const QStringList faults = TryCell(cell, bench_).faults;
  if (!faults.isEmpty()) {
    throw RoundFailed((cell.Name() + ": " + faults.join("; ") + bench_.Scene()).toStdString());
  }
  bench_.Rest();
  has_tried_all_ = has_tried_all_ || quiet_.left.empty();
  ++counts_[cell.fault->name];
}

std::map<QString, Resources> Rounds::AtRest(const std::map<QString, Resources>& before) const {
  std::map<QString, Resources> now;
  const auto look = [&] {
    now = {{"Tevron", OwnResources()}};
    for (const auto& [link, lidar] : bench_.lidars()) {
      now[link->name] = ResourcesOf(lidar->id());
    }
    return before.empty() || std::all_of(now.begin(), now.end(), [&](const auto& one) {
             return Growth(before.at(one.first), one.second).isEmpty();
           });
  };
  WaitFor(look, 2500);
  return now;
}
