#pragma once

#include <stdexcept>

namespace hmi {

/// Why the server cannot start, as one line for people: it ends with exit code 2.
class StartError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace hmi
