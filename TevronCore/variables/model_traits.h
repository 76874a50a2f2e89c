#pragma once

#include <string>

/// How a model is reached; the numbers are what the screens compare.
enum ConnectType : int {
  kNetworkLink = 0,  ///< commands over TCP
  kSerialPair = 1,   ///< requests over RS-485, answers and point cloud over a UART
  kSerialCmx = 2,    ///< commands over one RS-485 line
};

/// Models that know the maintenance commands, by the facts they tell about themselves.
enum class SerialFamily { kNone = 0, kLumo = 1, kKiva = 2 };

/// "network", "serial pair" or "serial line".
const char* TextOf(ConnectType connect_type);
/// "none", "Lumo" or "Kiva".
const char* TextOf(SerialFamily family);

/// What is known about a model apart from its tables.
struct ModelTraits {
  ConnectType connect = kNetworkLink;
  SerialFamily family = SerialFamily::kNone;
};

/// "Lumo" is a serial pair, "Lumo-CMX" and "Kiva-CMX" are reached over one line, every other model
/// over the network. The beginning of the name, "Lumo" or "Kiva", tells the family.
ModelTraits TraitsOf(const std::string& model);
