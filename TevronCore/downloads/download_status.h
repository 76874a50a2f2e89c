#pragma once

#include <cstdint>

/// How far the download of the operation log is, for a screen.
struct DownloadSnapshot {
  bool running = false;
  bool cancelling = false;  ///< the user has had enough of it
  int part = 0;             ///< that is being fetched, from 1
  int part_count = 0;
  uint64_t received = 0;   ///< bytes of this part
  uint64_t announced = 0;  ///< of how many, as the lidar says; 0 while it has not
  uint64_t saved = 0;      ///< bytes in the files of the parts before it
};
