#include "bench/HeapCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocationCount = 0;
std::atomic<std::size_t> byteCount = 0;

}  // namespace

HeapUse HeapUse::now() noexcept {
    return {allocationCount, byteCount};
}

void* operator new(std::size_t size) {
    allocationCount.fetch_add(1, std::memory_order_relaxed);
    byteCount.fetch_add(size, std::memory_order_relaxed);
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
