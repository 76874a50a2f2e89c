#pragma once

#include <string>

#include "CmxClient/tls_session.h"

namespace kavel::lidar {

/// What a sentence says of a lidar with which no handshake could be made, for any reason but its
/// certificate: "it answers without TLS". `shows_certificate`: whether there was one of ours to
/// show.
std::string HandshakeFailureText(const TlsStep& step, bool shows_certificate);

/// The same of a lidar that has ended the link with an alert; "" for any other end.
std::string AlertText(const TlsStep& step);

}  // namespace kavel::lidar
