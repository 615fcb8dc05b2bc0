#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace hmi {

/// With padding, as RFC 4648 section 4 has it.
std::string base64(std::span<const std::byte> bytes);

}  // namespace hmi
