#pragma once

#include <cstdint>
#include <string>

/// What the UART of a pair of serial ports has carried since it was opened, besides answers.
struct UartArrivals {
  std::string port;
  uint64_t packets = 0;      ///< of the point cloud
  uint64_t stray_bytes = 0;  ///< that belong to no frame
};
