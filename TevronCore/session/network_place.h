#pragma once

#include <string>

/// Where a lidar is on the network.
struct NetworkPlace {
  std::string address;
  std::string port;  ///< text, as it is entered
};
