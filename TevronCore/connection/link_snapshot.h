#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "connection/connection.h"
#include "connection/trusted_lidars.h"

/// A connection that ended although nobody ended it.
struct LinkLoss {
  std::string reason;  ///< a sentence for the user
  std::chrono::system_clock::time_point at;
};

/// How it stands with the connection, for whoever shows it.
struct LinkSnapshot {
  bool connected = false;
  bool connecting = false;
  bool awaiting = false;  ///< connecting to a lidar that restarts: it has until give_up_at
  std::string place;      ///< of the connection or the last attempt, see PlaceText
  std::string failure;    ///< of the last attempt, a sentence; "" while none is known
  /// The last attempt ended because the certificate that this lidar showed is not trusted; none
  /// after one that waited for a lidar to restart.
  std::optional<UntrustedLidar> untrusted;
  std::optional<TrustedCertificate> certificate;  ///< of a lidar that is connected over TLS
  std::optional<LinkLoss> loss;  ///< until a lidar is connected, or another model chosen
  /// A connected serial lidar answers nothing since then: such a line has no link check.
  std::optional<std::chrono::system_clock::time_point> silent_since;
  std::string next_address;  ///< where the lidar is reached after its restart; "" as before
  int next_addresses = 0;    ///< how often that has been told
  std::chrono::system_clock::time_point give_up_at;
  // The connected lidar, as far as it was read; "" while unread.
  std::string part_number;
  std::string serial_number;
  std::string version;
  bool reads_view = true;  ///< there are values in view that are read from the lidar
  std::optional<std::chrono::system_clock::time_point> read_at;  ///< the newest value in view
};
