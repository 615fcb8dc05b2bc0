#include "server/users/UserFile.h"

#include <algorithm>

#include "server/JsonFile.h"
#include "server/StartError.h"
#include "server/json/JsonLines.h"
#include "server/json/ParseJson.h"
#include "server/users/Password.h"

namespace hmi {

namespace json = boost::json;

namespace {

struct Fault {
    std::string field;
    std::string text;
};

std::string textOf(const json::object& fields, std::string_view name) {
    const json::value* const value = fields.if_contains(name);
    return value && value->is_string() ? std::string(value->get_string()) : std::string();
}

/// Names stand in the log and, before a colon, in headers.
bool isName(std::string_view name) {
    return !name.empty() && name.size() <= longestUserName &&
           std::all_of(name.begin(), name.end(), [](char c) {
               return static_cast<unsigned char>(c) > 0x20 && c != 0x7F && c != ':';
           });
}

User userOf(const std::string& name, const json::value& value) {
    const std::string path = "users." + name;
    if (!isName(name))
        throw Fault{path, "a name has up to 64 bytes, without spaces and colons"};
    const json::object* const fields = value.if_object();
    if (!fields)
        throw Fault{path, "not an object"};
    const std::string hash = textOf(*fields, "password");
    if (!isPasswordHash(hash))
        throw Fault{path + ".password", "not a hash; --hash-password makes one"};
    const auto role = roleOf(textOf(*fields, "role"));
    if (!role)
        throw Fault{path + ".role", "none of view, confirm, engineer"};
    for (const json::key_value_pair& field : *fields) {
        if (field.key() != "password" && field.key() != "role")
            throw Fault{path + "." + std::string(field.key()), "unknown"};
    }
    return {hash, *role};
}

Users usersOf(const json::value& document) {
    const json::object* const root = document.if_object();
    const json::value* const entries = root ? root->if_contains("users") : nullptr;
    if (!entries || !entries->is_object())
        throw Fault{"", "not an object with the object \"users\""};
    if (entries->get_object().empty())
        throw Fault{"users", "nobody could sign in"};
    if (root->size() != 1)
        throw Fault{"", "there is more than \"users\""};
    Users users;
    for (const json::key_value_pair& entry : entries->get_object())
        users.emplace(entry.key(), userOf(std::string(entry.key()), entry.value()));
    return users;
}

}  // namespace

Users readUsers(const std::filesystem::path& file) {
    const std::string text = readFile(file);
    const json::value document = parseJsonFile(file, text);
    try {
        return usersOf(document);
    } catch (const Fault& fault) {
        throw StartError(file.string() + ": line " +
                         std::to_string(JsonLines(text).of(fault.field)) + ": " +
                         (fault.field.empty() ? "" : fault.field + ": ") + fault.text);
    }
}

}  // namespace hmi
