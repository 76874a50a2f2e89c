#include "auth/aes.h"

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include <limits>
#include <memory>

namespace {

struct OpenSslDeleter {
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
  void operator()(EVP_MAC* mac) const { EVP_MAC_free(mac); }
  void operator()(EVP_MAC_CTX* context) const { EVP_MAC_CTX_free(context); }
};
template <typename T>
using OpenSslPtr = std::unique_ptr<T, OpenSslDeleter>;

}  // namespace

std::vector<uint8_t> Aes128Cbc(CipherDirection direction, const SecretBytes& key,
                               const std::vector<uint8_t>& vector,
                               const std::vector<uint8_t>& input) {
  constexpr size_t kKeySize = 16;
  const size_t largest_input = std::numeric_limits<int>::max() - kAesBlockSize;
  if (key.size() != kKeySize || vector.size() != kAesBlockSize || input.size() > largest_input) {
    return {};
  }
  const OpenSslPtr<EVP_CIPHER_CTX> context(EVP_CIPHER_CTX_new());
  const int encrypt = direction == CipherDirection::kEncrypt ? 1 : 0;
  if (context == nullptr || EVP_CipherInit_ex(context.get(), EVP_aes_128_cbc(), nullptr, key.data(),
                                              vector.data(), encrypt) != 1) {
    return {};
  }
  EVP_CIPHER_CTX_set_padding(context.get(), 0);

  std::vector<uint8_t> output(input.size() + kAesBlockSize);
  int updated = 0;
  int finished = 0;
  if (EVP_CipherUpdate(context.get(), output.data(), &updated, input.data(),
                       static_cast<int>(input.size())) != 1 ||
      EVP_CipherFinal_ex(context.get(), output.data() + updated, &finished) != 1) {
    return {};
  }
  output.resize(static_cast<size_t>(updated) + static_cast<size_t>(finished));
  return output;
}

std::vector<uint8_t> Aes256CmacTag(const SecretBytes& key, const std::vector<uint8_t>& input) {
  constexpr size_t kKeySize = 32;
  if (key.size() != kKeySize) {
    return {};
  }
  const OpenSslPtr<EVP_MAC> mac(EVP_MAC_fetch(nullptr, "CMAC", nullptr));
  const OpenSslPtr<EVP_MAC_CTX> context(mac ? EVP_MAC_CTX_new(mac.get()) : nullptr);
  // CMAC is defined over the block cipher; naming its CBC form is how the library is told which.
  char cipher[] = "AES-256-CBC";
  const OSSL_PARAM parameters[] = {
      OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_CIPHER, cipher, 0),
      OSSL_PARAM_construct_end()};
  std::vector<uint8_t> tag(kAesBlockSize);
  size_t tag_size = 0;
  if (context == nullptr || EVP_MAC_init(context.get(), key.data(), key.size(), parameters) != 1 ||
      EVP_MAC_update(context.get(), input.data(), input.size()) != 1 ||
      EVP_MAC_final(context.get(), tag.data(), &tag_size, tag.size()) != 1 ||
      tag_size != tag.size()) {
    return {};
  }
  return tag;
}
