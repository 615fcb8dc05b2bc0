#pragma once

#include <string>

namespace hmi {

/// A line of standard input; at a terminal it is asked for, twice, and not shown. Throws StartError
/// for an empty one.
std::string readPassword();

}  // namespace hmi
