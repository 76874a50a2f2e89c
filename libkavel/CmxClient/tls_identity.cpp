#include "CmxClient/tls_identity.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509err.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace kavel::lidar {
namespace {

constexpr uintmax_t kLargestFile = uintmax_t{1024} * 1024;

// Why the file is not to be opened as one with certificates or a key; "" when it may be.
std::string FileProblem(const std::string& path) {
  const std::filesystem::path file = std::filesystem::u8path(path);
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    return "is no file";
  }
  errno = 0;
  if (!std::ifstream(file, std::ios::binary)) {
    return "cannot be read: " + std::generic_category().message(errno);
  }
  const auto size = std::filesystem::file_size(file, error);
  return !error && size > kLargestFile ? "is too large: more than 1 MiB" : "";
}

bool IsReason(unsigned long error, int library, int reason) {
  return ERR_GET_LIB(error) == library && ERR_GET_REASON(error) == reason;
}

// What OpenSSL found wrong with a file that can be read and should hold `what`.
std::string ContentProblem(const std::string& what) {
  const unsigned long error = ERR_peek_error();
  ERR_clear_error();
  const char* reason = ERR_reason_error_string(error);
  const bool is_unsupported = IsReason(error, ERR_LIB_OSSL_DECODER, ERR_R_UNSUPPORTED) ||
                              IsReason(error, ERR_LIB_X509, X509_R_NO_CERTIFICATE_OR_CRL_FOUND);
  if (reason == nullptr || is_unsupported || IsReason(error, ERR_LIB_PEM, PEM_R_NO_START_LINE)) {
    return "holds no " + what + " in PEM form";
  }
  return "holds no " + what + " that can be used: " + reason;
}

// Without this OpenSSL would ask for the passphrase on the terminal.
int RefusePassphrase(char* /*buffer*/, int /*size*/, int /*is_writing*/, void* was_asked) {
  *static_cast<bool*>(was_asked) = true;
  return -1;
}

std::string LoadKey(SSL_CTX* context, const TlsIdentity& identity) {
  bool is_encrypted = false;
  SSL_CTX_set_default_passwd_cb(context, RefusePassphrase);
  SSL_CTX_set_default_passwd_cb_userdata(context, &is_encrypted);
  const bool is_loaded =
      SSL_CTX_use_PrivateKey_file(context, identity.key.c_str(), SSL_FILETYPE_PEM) == 1;
  SSL_CTX_set_default_passwd_cb_userdata(context, nullptr);
  SSL_CTX_set_default_passwd_cb(context, nullptr);
  if (is_encrypted) {
    return "The key file " + identity.key +
           " is encrypted. Store the key without a passphrase, in a file that only its owner can "
           "read (chmod 600).";
  }
  const bool is_mismatch = IsReason(ERR_peek_error(), ERR_LIB_X509, X509_R_KEY_VALUES_MISMATCH);
  if (is_mismatch || (is_loaded && SSL_CTX_check_private_key(context) != 1)) {
    return "The key in " + identity.key + " does not belong to the certificate in " +
           identity.cert + ".";
  }
  return is_loaded ? ""
                   : "The key file " + identity.key + ' ' + ContentProblem("private key") + '.';
}

std::string LoadFiles(SSL_CTX* context, const TlsIdentity& identity) {
  if (identity.cert.empty() != identity.key.empty()) {
    return identity.key.empty() ? "The certificate " + identity.cert + " needs its key file, too."
                                : "The key " + identity.key + " needs its certificate, too.";
  }
  const struct {
    const char* name;
    const std::string& path;
  } files[] = {{"CA", identity.ca}, {"certificate", identity.cert}, {"key", identity.key}};
  for (const auto& file : files) {
    const std::string problem = file.path.empty() ? "" : FileProblem(file.path);
    if (!problem.empty()) {
      return std::string("The ") + file.name + " file " + file.path + ' ' + problem + '.';
    }
  }
  if (!identity.ca.empty() && SSL_CTX_load_verify_file(context, identity.ca.c_str()) != 1) {
    return "The CA file " + identity.ca + ' ' + ContentProblem("certificate") + '.';
  }
  if (identity.cert.empty()) {
    return "";
  }
  if (SSL_CTX_use_certificate_chain_file(context, identity.cert.c_str()) != 1) {
    return "The certificate file " + identity.cert + ' ' + ContentProblem("certificate") + '.';
  }
  return LoadKey(context, identity);
}

}  // namespace

TlsContext MakeTlsContext(const TlsIdentity& identity, std::string* failure) {
  ERR_clear_error();
  TlsContext context(SSL_CTX_new(TLS_method()));
  if (!context || SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION) != 1) {
    *failure = "TLS is not available on this computer.";
    return nullptr;
  }
  SSL_CTX_set_security_level(context.get(), 2);
  SSL_CTX_set_options(context.get(), SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
  *failure = LoadFiles(context.get(), identity);
  ERR_clear_error();
  return failure->empty() ? std::move(context) : nullptr;
}

}  // namespace kavel::lidar
