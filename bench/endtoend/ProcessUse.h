#pragma once

#include <malloc.h>
#include <sys/resource.h>

/// What this process has used up.
struct ProcessUse {
    double microseconds;  ///< of all processors
    double heapBytes;     ///< in use, the allocator's own share included

    static ProcessUse now() {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        const auto of = [](const timeval& time) {
            return 1e6 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec);
        };
        const auto heap = mallinfo2();
        return {of(usage.ru_utime) + of(usage.ru_stime),
                static_cast<double>(heap.uordblks + heap.hblkhd)};
    }
    ProcessUse since(const ProcessUse& before) const {
        return {microseconds - before.microseconds, heapBytes - before.heapBytes};
    }
};
