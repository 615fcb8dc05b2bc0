#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hmi {

/// The names and values behind the "?" of a request, each name at most once.
class Query {
public:
    void add(std::string name, std::string value);
    /// Null when the name is missing or its value is empty, which means the same.
    const std::string* find(std::string_view name) const;
    using Names = std::initializer_list<std::string_view>;
    /// Throws RequestError 400 unless every name is one of these.
    void allowOnly(Names names, Names further = {}) const;
    /// A whole number from 0 on; throws RequestError 400 for anything else.
    std::uint64_t number(std::string_view name, std::uint64_t otherwise) const;
    /// Whether it is 1; throws RequestError 400 unless it is 0, 1 or missing.
    bool flag(std::string_view name) const;

private:
    std::vector<std::pair<std::string, std::string>> parameters;
};

/// The decoded target of a request: UTF-8 without NUL.
struct Target {
    std::vector<std::string> path;  ///< the names between the slashes
    Query query;
    std::string authority;  ///< of an absolute address, as it stands there; else empty

    /// "/path?query", or the same behind "http://host:port". Throws RequestError 400.
    static Target parse(std::string_view text);
    /// The path of a target that is not parsed yet, still encoded.
    static std::string_view pathOf(std::string_view text);
};

}  // namespace hmi
