#pragma once

#include <cstddef>

/// Allocations of this thread before the one that fails; none fails while it is negative.
extern thread_local int allocationsLeft;

/// Bytes that this thread has allocated and not freed, and the most that they have been since this
/// was set.
extern thread_local std::ptrdiff_t heldBytes;
extern thread_local std::ptrdiff_t mostHeldBytes;
