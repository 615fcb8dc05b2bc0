// Apart from all that allocates, where a compiler that sees both would take them for mismatched.
#include "server/TestHeap.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include <malloc.h>

thread_local int allocationsLeft = -1;
thread_local std::ptrdiff_t heldBytes = 0;
thread_local std::ptrdiff_t mostHeldBytes = 0;

namespace {

std::ptrdiff_t sizeOf(void* memory) noexcept {
#ifdef _WIN32
    return memory ? static_cast<std::ptrdiff_t>(::_msize(memory)) : 0;
#else
    return static_cast<std::ptrdiff_t>(::malloc_usable_size(memory));
#endif
}

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    void* const memory = allocationsLeft == 0 ? nullptr : std::malloc(size);
    if (allocationsLeft >= 0)
        --allocationsLeft;
    heldBytes += sizeOf(memory);
    mostHeldBytes = std::max(mostHeldBytes, heldBytes);
    return memory;
}
void* operator new(std::size_t size) {
    void* const memory = operator new(size, std::nothrow);
    return memory ? memory : throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    heldBytes -= sizeOf(memory);
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
