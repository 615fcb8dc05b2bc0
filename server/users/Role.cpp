#include "server/users/Role.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace hmi {

namespace {

constexpr std::array<std::string_view, 4> names{"none", "view", "confirm", "engineer"};

/// What everybody may do: see the page, ask how the server is, and sign in.
bool isOpen(Method method, const std::vector<std::string>& path) {
    if (path.size() == 2 && path[0] == "api" && path[1] == "session")
        return method == Method::get || method == Method::post || method == Method::remove;
    if (method != Method::get)
        return false;
    return path.empty() || path[0] == "page" ||
           (path.size() == 1 && (path[0] == "healthz" || path[0] == "readyz"));
}

bool isConfirmation(Method method, const std::vector<std::string>& path) {
    return method == Method::post && path.size() >= 2 && path[0] == "api" &&
           ((path.size() == 4 && path[1] == "events" && path[3] == "confirm") ||
            (path.size() == 2 && path[1] == "confirmations"));
}

bool isForEngineersToRead(const std::vector<std::string>& path) {
    return path[0] != "api" || path.size() < 2 || path[1] == "config" || path[1] == "log" ||
           path[1] == "commands";
}

}  // namespace

std::optional<Role> roleOf(std::string_view name) {
    const auto found = std::find(std::next(names.begin()), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return static_cast<Role>(std::distance(names.begin(), found));
}

std::string_view nameOf(Role role) {
    return names[static_cast<std::size_t>(role)];
}

Role neededRole(Method method, const Target& target) {
    const auto& path = target.path;
    if (isOpen(method, path))
        return Role::none;
    if (isConfirmation(method, path))
        return Role::confirm;
    if (method != Method::get)
        return Role::engineer;
    if (path.size() == 1 && path[0] == "metrics")
        return Role::view;
    return isForEngineersToRead(path) ? Role::engineer : Role::view;
}

}  // namespace hmi
