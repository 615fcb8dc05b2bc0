/// For systems without the library that passwords take: there are no users there.
#include "server/StartError.h"
#include "server/users/Password.h"

namespace hmi {

namespace {

[[noreturn]] void refuse() {
    throw StartError("this build has no users");
}

}  // namespace

std::string hashPassword(std::string_view) {
    refuse();
}
bool isPassword(std::string_view, const std::string&) {
    refuse();
}
bool isPasswordHash(const std::string&) {
    refuse();
}
std::string randomToken() {
    refuse();
}
std::string fingerprint(std::string_view) {
    refuse();
}
std::string decodeBase64(std::string_view) {
    refuse();
}

}  // namespace hmi
