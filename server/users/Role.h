#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "server/http/Request.h"

namespace hmi {

/// Each may do what those before it may. `none` is for requests that everybody may make.
enum class Role : std::uint8_t { none, view, confirm, engineer };

std::optional<Role> roleOf(std::string_view name);
std::string_view nameOf(Role role);

/// The role that a request needs. What is not known needs the highest.
Role neededRole(Method method, const Target& target);

}  // namespace hmi
