#pragma once

#include "auth/auth_keys.h"
#include "support/bytes.h"

/// Keys of every kind, all of them bytes 0x5A.
inline AuthKeys FuzzKeys() {
  AuthKeys keys;
  for (const AuthKeyKind& kind : kAuthKeyKinds) {
    keys.*kind.member = SecretBytes(Bytes(kind.size, 0x5A));
  }
  return keys;
}
