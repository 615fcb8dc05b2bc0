#include "server/HeapSettings.h"

#include <cstdlib>  // tells which C library it is
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace hmi {

void configureHeap() {
#ifdef __GLIBC__
    // Large blocks go back to the system when they are freed, instead of in pieces to later ones.
    mallopt(M_MMAP_THRESHOLD, 256 << 10);
    mallopt(M_ARENA_MAX, 4);
    // In a burst the system is asked for memory once for many events.
    mallopt(M_TOP_PAD, 1 << 20);
#endif
}

}  // namespace hmi
