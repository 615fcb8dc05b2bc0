#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "server/users/Role.h"

namespace hmi {

struct User {
    std::string passwordHash;
    Role role;

    friend bool operator==(const User&, const User&) = default;
};

using Users = std::map<std::string, User, std::less<>>;

/// Throws StartError with file, line and field.
Users readUsers(const std::filesystem::path& file);

}  // namespace hmi
