#pragma once

#include <QString>
#include <string>
#include <utility>

#include "CmxClient/tls_certificate.h"

/// A fingerprint for people to compare: pairs of capital digits with colons between.
std::string FingerprintText(const std::string& sha256);

/// A lidar that has shown a certificate.
struct CertifiedLidar {
  std::string serial_number;  ///< "" for one that tells none, which is known by its place
  std::string place;          ///< see PlaceText
  kavel::lidar::TlsCertificate certificate;
};

/// "lidar SN123", or "the lidar at 10.0.0.7, port 9347" for one that tells no serial number.
std::string NameOf(const CertifiedLidar& lidar);

/// What is known here of the certificate that a lidar shows.
enum class CertificateVerdict {
  kTrusted,     ///< the one that was remembered for it
  kUnknown,     ///< none was remembered
  kChanged,     ///< another one was
  kUnreadable,  ///< what was remembered cannot be read
};

/// A lidar that was not connected because of its certificate.
struct UntrustedLidar {
  CertifiedLidar lidar;
  CertificateVerdict verdict = CertificateVerdict::kUnknown;
};

/// The certificates that the user trusts where no certificate authority vouches for them: a file
/// for each lidar, so that one is forgotten by removing its file. Holds nothing itself; any thread,
/// and several programs may use the same folder.
class TrustedLidars {
 public:
  /// Where the programs of this system keep them for this user.
  static QString UsualFolder();

  explicit TrustedLidars(QString folder = UsualFolder()) : folder_(std::move(folder)) {}

  /// *reason says what is wrong, unless it is trusted, and *remedy what can be done about it,
  /// unless it is unknown: sentences.
  CertificateVerdict Judge(const CertifiedLidar& lidar, std::string* reason,
                           std::string* remedy) const;

  /// Remembers its certificate, in the place of one that was. Returns "", or why that cannot be: a
  /// sentence with the place.
  std::string Remember(const CertifiedLidar& lidar) const;

 private:
  QString FileOf(const CertifiedLidar& lidar) const;

  const QString folder_;
};
