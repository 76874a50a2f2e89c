#pragma once

#include <string>

struct x509_st;

namespace kavel::lidar {

/// What a certificate says of itself, for people and for pins. The texts are ASCII: whatever else a
/// name holds stands there as "\" and two hexadecimal digits a byte, and a long name is cut.
struct TlsCertificate {
  std::string sha256;      ///< of the certificate's DER form: 64 lower-case hexadecimal digits
  std::string subject;     ///< such as "CN=lidar 12, O=Kavel"
  std::string issuer;      ///< the same as `subject` when it is self-signed
  std::string valid_from;  ///< UTC, such as "2026-03-01T00:00:00Z"; "" when it is no time
  std::string valid_until;
};

TlsCertificate Describe(const x509_st& certificate);

/// The form in which fingerprints are compared: of 64 hexadecimal digits in either case, with or
/// without colons between the pairs, the lower-case digits alone. "" when the text is none.
std::string NormalSha256(const std::string& text);

}  // namespace kavel::lidar
