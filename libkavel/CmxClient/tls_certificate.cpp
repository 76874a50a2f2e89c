#include "CmxClient/tls_certificate.h"

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <array>
#include <cctype>
#include <cstdio>
#include <ctime>
#include <memory>

namespace kavel::lidar {
namespace {

constexpr size_t kSha256Digits = 64;
/// Names have no limit of their own, and a peer that is not trusted yet chooses them.
constexpr size_t kLongestName = 200;

std::string NameText(const X509_NAME* name) {
  const std::unique_ptr<BIO, int (*)(BIO*)> text(BIO_new(BIO_s_mem()), BIO_free);
  // What is no ASCII is escaped: no name can then look like another or turn the writing round.
  if (!text || X509_NAME_print_ex(text.get(), name, 0, XN_FLAG_ONELINE & ~XN_FLAG_SPC_EQ) < 0) {
    return {};
  }
  const char* data = nullptr;
  const auto size = static_cast<size_t>(BIO_get_mem_data(text.get(), &data));
  return size <= kLongestName ? std::string(data, size) : std::string(data, kLongestName) + "...";
}

std::string TimeText(const ASN1_TIME* time) {
  std::tm parts{};
  std::array<char, sizeof "9999-12-31T23:59:59Z"> text{};
  if (ASN1_TIME_to_tm(time, &parts) != 1 ||
      std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts) == 0) {
    return {};
  }
  return text.data();
}

std::string Sha256Of(const X509& certificate) {
  std::array<uint8_t, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  std::string text;
  if (X509_digest(&certificate, EVP_sha256(), digest.data(), &size) == 1) {
    for (size_t i = 0; i < size; ++i) {
      char pair[3] = "";
      snprintf(pair, sizeof pair, "%02x", unsigned{digest[i]});
      text += pair;
    }
  }
  return text;
}

}  // namespace

TlsCertificate Describe(const x509_st& certificate) {
  TlsCertificate described;
  described.sha256 = Sha256Of(certificate);
  described.subject = NameText(X509_get_subject_name(&certificate));
  described.issuer = NameText(X509_get_issuer_name(&certificate));
  described.valid_from = TimeText(X509_get0_notBefore(&certificate));
  described.valid_until = TimeText(X509_get0_notAfter(&certificate));
  return described;
}

std::string NormalSha256(const std::string& text) {
  const bool has_colons = text.size() == kSha256Digits / 2 * 3 - 1;
  std::string digits;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto letter = static_cast<unsigned char>(text[i]);
    if (has_colons && i % 3 == 2) {
      if (letter != ':') {
        return {};
      }
    } else if (std::isxdigit(letter) == 0) {
      return {};
    } else {
      digits += static_cast<char>(std::tolower(letter));
    }
  }
  return digits.size() == kSha256Digits ? digits : std::string();
}

}  // namespace kavel::lidar
