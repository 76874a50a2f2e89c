#pragma once

#include <cstdint>
#include <deque>

/// How fast something is sent, from what arrived over the last few seconds: steady enough to be
/// read, and nothing at all before there is something to tell or when nothing has moved for as
/// long. Times come from one steady clock, in milliseconds.
class TransferPace {
 public:
  /// Notes that `kib` KiB in all were sent by then. Less than before begins a new transfer.
  void Note(int64_t now_ms, int kib);
  void Clear() { samples_.clear(); }

  /// KiB a second; 0 while unknown.
  double KibPerSecond() const;
  /// Seconds until `total_kib` KiB are sent, rounded up; -1 while unknown.
  int SecondsLeft(int total_kib) const;

 private:
  struct Sample {
    int64_t time_ms;
    int kib;
  };

  std::deque<Sample> samples_;
};
