#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include <boost/json/value.hpp>

namespace hmi {

/// Text that is no JSON, is nested more than 32 deep, names a member twice, or has a number that is
/// too large; says where: "line 3, column 5: ...".
class JsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Throws JsonError.
boost::json::value parseJson(std::string_view text);

/// With an indentation of two, for files that people read.
std::string prettyJson(const boost::json::value& value);

}  // namespace hmi
