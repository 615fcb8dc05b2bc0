#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "server/users/Role.h"

namespace hmi {

struct User {
    std::string passwordHash;
    Role role;
};

using Users = std::map<std::string, User, std::less<>>;

/// Throws StartError with file, line and field.
Users readUsers(const std::filesystem::path& file);

}  // namespace hmi
