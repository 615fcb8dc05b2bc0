#pragma once

#include <cstddef>

namespace hmi {

/// Lets the process open as many files and connections as the system grants. Answers how many.
std::size_t raiseFileLimit() noexcept;

}  // namespace hmi
