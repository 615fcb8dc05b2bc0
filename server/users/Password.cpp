#include "server/users/Password.h"

#include <array>
#include <stdexcept>

#include <sodium.h>

namespace hmi {

namespace {

/// Prepared on first use, by any thread.
void prepare() {
    static const bool isReady = sodium_init() >= 0;
    if (!isReady)
        throw std::runtime_error("the system gives no random numbers");
}

template <std::size_t size>
std::string toText(const std::array<unsigned char, size>& bytes) {
    constexpr int variant = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
    std::array<char, sodium_base64_ENCODED_LEN(size, variant)> text{};
    return sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), variant);
}

}  // namespace

std::string hashPassword(std::string_view password) {
    prepare();
    std::array<char, crypto_pwhash_STRBYTES> hash{};
    if (crypto_pwhash_str(hash.data(), password.data(), password.size(),
                          crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0)
        throw std::runtime_error("no memory to hash a password");
    return hash.data();
}

bool isPassword(std::string_view password, const std::string& hash) {
    prepare();
    return crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
}

bool isPasswordHash(const std::string& text) {
    prepare();
    // Hashes that cost other amounts are still good; what is no such text is not.
    return text.starts_with("$argon2id$") && text.size() < crypto_pwhash_STRBYTES &&
           crypto_pwhash_str_needs_rehash(text.c_str(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                                          crypto_pwhash_MEMLIMIT_INTERACTIVE) >= 0;
}

std::string randomToken() {
    prepare();
    std::array<unsigned char, 32> bytes{};
    randombytes_buf(bytes.data(), bytes.size());
    return toText(bytes);
}

std::string fingerprint(std::string_view text) {
    static const std::string key = randomToken();
    std::array<unsigned char, crypto_generichash_BYTES> bytes{};
    crypto_generichash(bytes.data(), bytes.size(),
                       reinterpret_cast<const unsigned char*>(text.data()), text.size(),
                       reinterpret_cast<const unsigned char*>(key.data()), key.size());
    return toText(bytes);
}

std::string decodeBase64(std::string_view text) {
    std::string bytes(text.size(), '\0');
    std::size_t size = 0;
    if (sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), text.data(),
                          text.size(), nullptr, &size, nullptr,
                          sodium_base64_VARIANT_ORIGINAL) != 0)
        return {};
    bytes.resize(size);
    return bytes;
}

}  // namespace hmi
