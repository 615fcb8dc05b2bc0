#pragma once

#include <cstddef>

/// What the calling thread has taken from the heap, counted by a replaced operator new.
struct HeapUse {
    std::size_t allocations;
    std::size_t bytes;

    static HeapUse now() noexcept;
};
