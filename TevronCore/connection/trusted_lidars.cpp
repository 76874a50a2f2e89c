#include "connection/trusted_lidars.h"

#include <QStandardPaths>
#include <cctype>
#include <filesystem>

#include "connection/connection_settings.h"
#include "connection/path_part.h"

namespace {

constexpr char kFingerprintKey[] = "sha256";

}  // namespace

std::string FingerprintText(const std::string& sha256) {
  std::string text;
  for (size_t i = 0; i < sha256.size(); ++i) {
    text += i > 0 && i % 2 == 0 ? ":" : "";
    text += static_cast<char>(std::toupper(static_cast<unsigned char>(sha256[i])));
  }
  return text;
}

std::string NameOf(const CertifiedLidar& lidar) {
  return lidar.serial_number.empty() ? "the lidar at " + lidar.place
                                     : "lidar " + lidar.serial_number;
}

QString TrustedLidars::UsualFolder() {
  // Not the folder of one application: the window and the command line share them.
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
         "/Tevron/trusted_lidars";
}

QString TrustedLidars::FileOf(const CertifiedLidar& lidar) const {
  const bool has_number = !lidar.serial_number.empty();
  return folder_ + (has_number ? "/serial_" : "/place_") +
         PathPartOf(has_number ? lidar.serial_number : lidar.place) + ".ini";
}

CertificateVerdict TrustedLidars::Judge(const CertifiedLidar& lidar, std::string* reason,
                                        std::string* remedy) const {
  const QString file = FileOf(lidar);
  const std::string name = NameOf(lidar);
  const kavel::lidar::TlsCertificate& shown = lidar.certificate;
  // Only where there surely is none: in a folder that cannot be looked into there may be one.
  std::error_code ignored;
  if (std::filesystem::symlink_status(file.toStdString(), ignored).type() ==
      std::filesystem::file_type::not_found) {
    *reason = "The certificate of " + name +
              " is not known on this computer: " + FingerprintText(shown.sha256) + " (SHA-256), " +
              shown.subject + ", valid from " + shown.valid_from + " to " + shown.valid_until + '.';
    return CertificateVerdict::kUnknown;
  }
  const std::string known =
      kavel::lidar::NormalSha256(LoadKeptText(file, kFingerprintKey).toStdString());
  if (known.empty()) {
    *reason = "The certificate that was trusted for " + name + " cannot be read.";
    *remedy = "Let the user of this program read " + file.toStdString() +
              ", or remove it and compare the certificate anew when connecting.";
    return CertificateVerdict::kUnreadable;
  }
  if (known == shown.sha256) {
    return CertificateVerdict::kTrusted;
  }
  *reason = "The certificate of " + name + " has changed: it was " + FingerprintText(known) +
            ", it is " + FingerprintText(shown.sha256) + '.';
  *remedy = "If the lidar was given a new one, remove " + file.toStdString() +
            " and connect again. If nobody gave it one, something else answers in its place.";
  return CertificateVerdict::kChanged;
}

std::string TrustedLidars::Remember(const CertifiedLidar& lidar) const {
  const QString file = FileOf(lidar);
  const QString text = QString::fromStdString(FingerprintText(lidar.certificate.sha256));
  const std::string problem = SaveKeptText(file, kFingerprintKey, text);
  return problem.empty()
             ? ""
             : "The certificate of " + NameOf(lidar) + " could not be remembered: " + problem + '.';
}
