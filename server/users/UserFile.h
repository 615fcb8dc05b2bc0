#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "server/users/Role.h"

namespace hmi {

inline constexpr std::size_t longestUserName = 64;  ///< bytes

struct User {
    std::string passwordHash;
    Role role;

    friend bool operator==(const User&, const User&) = default;
};

using Users = std::map<std::string, User, std::less<>>;

/// Throws StartError with file, line and field.
Users readUsers(const std::filesystem::path& file);

}  // namespace hmi
