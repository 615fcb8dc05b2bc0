#pragma once

#include <string>
#include <string_view>

namespace hmi {

/// Passwords as they are kept (Argon2id) and secrets that must not be guessed. Throws
/// std::runtime_error where the memory or the system's random numbers are missing.
std::string hashPassword(std::string_view password);
/// Takes a tenth of a second and 64 MiB, on purpose.
bool isPassword(std::string_view password, const std::string& hash);
bool isPasswordHash(const std::string& text);
/// 256 bits in letters and digits.
std::string randomToken();
/// The same text gives the same, for as long as the process lives, and leads to no text back.
std::string fingerprint(std::string_view text);
/// Nothing for what is no Base64.
std::string decodeBase64(std::string_view text);

}  // namespace hmi
