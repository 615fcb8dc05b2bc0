#include "server/net/FileLimit.h"

#include <algorithm>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace hmi {

std::size_t raiseFileLimit() noexcept {
    [[maybe_unused]] constexpr std::size_t least = 256;
    constexpr std::size_t most = 65536;
#ifdef _WIN32
    return most;  // handles are not limited
#else
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return least;
    limit.rlim_cur = std::max(limit.rlim_cur, std::min<rlim_t>(limit.rlim_max, most));
    setrlimit(RLIMIT_NOFILE, &limit);
    getrlimit(RLIMIT_NOFILE, &limit);
    return std::clamp<std::size_t>(limit.rlim_cur, least, most);
#endif
}

}  // namespace hmi
