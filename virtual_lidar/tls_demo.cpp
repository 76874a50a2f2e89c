#include "tls_demo.h"

#include <fcntl.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <system_error>
#include <utility>

#include "server/unique_fd.h"

namespace {

struct Free {
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(X509_EXTENSION* extension) const { X509_EXTENSION_free(extension); }
  void operator()(BIO* file) const { BIO_free(file); }
};
template <typename Type>
using Owned = std::unique_ptr<Type, Free>;

constexpr mode_t kForEverybody = 0644;
constexpr mode_t kForTheOwner = 0600;

struct Identity {
  Owned<EVP_PKEY> key;
  Owned<X509> certificate;
};

using Extensions = std::initializer_list<std::pair<int, const char*>>;

bool AddExtensions(X509* certificate, Extensions extensions) {
  for (const auto& [kind, text] : extensions) {
    const Owned<X509_EXTENSION> extension(X509V3_EXT_conf_nid(nullptr, nullptr, kind, text));
    if (!extension || X509_add_ext(certificate, extension.get(), -1) != 1) {
      return false;
    }
  }
  return true;
}

bool SetSerial(X509* certificate) {
  constexpr int kBits = 127;
  const std::unique_ptr<BIGNUM, decltype(&BN_free)> number(BN_new(), BN_free);
  return number && BN_rand(number.get(), kBits, BN_RAND_TOP_ONE, BN_RAND_BOTTOM_ANY) == 1 &&
         BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) != nullptr;
}

// Signed by `issuer`, or by itself where there is none. Without a certificate when OpenSSL fails.
Identity Make(const char* name, const Identity* issuer, Extensions extensions) {
  constexpr long kHour = 3600;  // a clock that is a little behind does not matter
  constexpr int kDays = 365;
  Identity made;
  made.key.reset(EVP_EC_gen("P-256"));
  Owned<X509> certificate(X509_new());
  if (!made.key || !certificate) {
    return made;
  }
  X509* const raw = certificate.get();
  X509_set_version(raw, X509_VERSION_3);
  X509_gmtime_adj(X509_getm_notBefore(raw), -kHour);
  X509_time_adj_ex(X509_getm_notAfter(raw), kDays, 0, nullptr);
  const auto* text = reinterpret_cast<const unsigned char*>(name);
  X509_NAME* const subject = X509_get_subject_name(raw);
  const X509_NAME* const by =
      issuer == nullptr ? subject : X509_get_subject_name(issuer->certificate.get());
  EVP_PKEY* const signer = issuer == nullptr ? made.key.get() : issuer->key.get();
  if (SetSerial(raw) && X509_set_pubkey(raw, made.key.get()) == 1 &&
      X509_NAME_add_entry_by_NID(subject, NID_commonName, MBSTRING_UTF8, text, -1, -1, 0) == 1 &&
      X509_set_issuer_name(raw, by) == 1 && AddExtensions(raw, extensions) &&
      X509_sign(raw, signer, EVP_sha256()) > 0) {
    made.certificate = std::move(certificate);
  }
  return made;
}

// Straight into the file, so that no copy of a key stays in memory.
bool WriteNew(const std::string& path, mode_t mode, const std::function<int(BIO*)>& write,
              std::string* error) {
  const UniqueFd fd(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  const Owned<BIO> file(fd.valid() ? BIO_new_fd(fd.get(), BIO_NOCLOSE) : nullptr);
  if (file && write(file.get()) == 1) {
    return true;
  }
  *error = "cannot write " + path + ": " + std::generic_category().message(errno);
  return false;
}

bool WriteCertificate(const std::string& path, const Identity& identity, std::string* error) {
  return WriteNew(
      path, kForEverybody,
      [&](BIO* file) { return PEM_write_bio_X509(file, identity.certificate.get()); }, error);
}

bool WriteBoth(const std::string& stem, const Identity& identity, std::string* error) {
  return WriteNew(
             stem + "-key.pem", kForTheOwner,
             [&](BIO* file) {
               return PEM_write_bio_PrivateKey(file, identity.key.get(), nullptr, nullptr, 0,
                                               nullptr, nullptr);
             },
             error) &&
         WriteCertificate(stem + ".pem", identity, error);
}

}  // namespace

bool WriteTlsFiles(const std::string& folder, std::string* error) {
  for (const char* name :
       {"ca.pem", "lidar.pem", "lidar-key.pem", "client.pem", "client-key.pem"}) {
    std::error_code unknown;
    const std::string path = folder + '/' + name;
    if (std::filesystem::exists(path, unknown)) {
      *error = path + " is there already; name another folder";
      return false;
    }
  }
  std::error_code failed;
  std::filesystem::create_directories(folder, failed);
  if (failed) {
    *error = "cannot make the folder " + folder + ": " + failed.message();
    return false;
  }
  const Identity ca =
      Make("Demonstration CA", nullptr,
           {{NID_basic_constraints, "critical,CA:TRUE"}, {NID_key_usage, "critical,keyCertSign"}});
  const Identity lidar =
      !ca.certificate
          ? Identity()
          : Make("Virtual lidar", &ca,
                 {{NID_subject_alt_name, "IP:127.0.0.1"}, {NID_ext_key_usage, "serverAuth"}});
  const Identity client =
      !ca.certificate ? Identity()
                      : Make("Demonstration client", &ca, {{NID_ext_key_usage, "clientAuth"}});
  if (!lidar.certificate || !client.certificate) {
    *error = "OpenSSL makes no certificates here";
    return false;
  }
  return WriteCertificate(folder + "/ca.pem", ca, error) &&
         WriteBoth(folder + "/lidar", lidar, error) && WriteBoth(folder + "/client", client, error);
}
