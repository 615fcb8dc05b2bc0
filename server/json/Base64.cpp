#include "server/json/Base64.h"

#include <algorithm>
#include <cstdint>

namespace hmi {

std::string base64(std::span<const std::byte> bytes) {
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const auto part = bytes.subspan(at, std::min<std::size_t>(3, bytes.size() - at));
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < part.size() ? std::to_integer<std::uint32_t>(part[i]) : 0);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= part.size() ? digits[group >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

}  // namespace hmi
