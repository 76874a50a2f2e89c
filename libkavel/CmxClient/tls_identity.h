#pragma once

#include <string>

#include "CmxClient/tls_session.h"

namespace kavel::lidar {

/// How the lidar has to prove who it is, and how we do. `ca`, `cert` and `key` name PEM files of at
/// most 1 MiB, "" for none.
struct TlsIdentity {
  /// Who the lidar's certificate has to come from: whichever certificate the file holds vouches, a
  /// root or not. It then also has to name the lidar's address (as an IP entry of its subject
  /// alternative names) and to be in its time.
  std::string ca;
  /// What the lidar is shown when it asks, with intermediate certificates behind it, and its key,
  /// not encrypted. Either both or none.
  std::string cert;
  std::string key;
  /// The fingerprint of the one certificate that the lidar may show, in any form that
  /// `NormalSha256` takes. "" for any. With a `ca` both have to hold.
  std::string pinned_sha256;
};

/// A context for either end that holds the identity's files: TLS 1.2 or newer, security level 2, no
/// renegotiation. It checks nobody yet. None, with a sentence for the user in `*failure`, when a
/// file is of no use. No content of a key file is told.
TlsContext MakeTlsContext(const TlsIdentity& identity, std::string* failure);

}  // namespace kavel::lidar
