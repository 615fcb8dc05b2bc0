#include "bench/HeapCounter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocationCount = 0;
thread_local std::size_t byteCount = 0;

}  // namespace

HeapUse HeapUse::now() noexcept {
    return {allocationCount, byteCount};
}

void* operator new(std::size_t size) {
    ++allocationCount;
    byteCount += size;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
