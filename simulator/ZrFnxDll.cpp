#include <limits>
#include <optional>
#include <set>

#include "platform/Mutex.h"
#include "simulator/FnxSimulator.h"

namespace {

constexpr std::int32_t noError = 0;
constexpr std::int32_t invalidParameter = 0x70B;
constexpr std::int32_t portNotOpen = 0x748;

/// The local router: its address and the ports that are open. Any thread.
class Router {
public:
    std::int32_t open() {
        Lock lock(mutex);
        if (!local)
            return 0;
        if (next == std::numeric_limits<std::int32_t>::max())
            next = firstPort;
        while (!ports.insert(next).second)
            ++next;
        return next++;
    }
    bool close(std::int32_t port) {
        Lock lock(mutex);
        return ports.erase(port) != 0;
    }
    bool isOpen(std::int32_t port) {
        Lock lock(mutex);
        return ports.count(port) != 0;
    }
    FnxNetId address() {
        Lock lock(mutex);
        return local.value_or(FnxNetId{});
    }
    void setAddress(const FnxNetId* address) {
        Lock lock(mutex);
        local = address ? std::optional(*address) : std::nullopt;
    }

private:
    static constexpr std::int32_t firstPort = 30000;

    Mutex mutex;
    std::set<std::int32_t> ports GUARDED_BY(mutex);
    std::int32_t next GUARDED_BY(mutex) = firstPort;
    std::optional<FnxNetId> local GUARDED_BY(mutex) = FnxNetId{{127, 0, 0, 1, 1, 1}};
};

Router& router() {
    static Router* const instance = new Router;  // outlives the threads of a host that is leaving
    return *instance;
}

}  // namespace

std::int32_t FnxPortOpen() {
    try {
        return router().open();
    } catch (...) {
        return 0;
    }
}

std::int32_t FnxPortClose(std::int32_t port) {
    return router().close(port) ? noError : portNotOpen;
}

std::int32_t FnxGetLocalAddress(std::int32_t port, FnxNetId* netId) {
    if (!netId)
        return invalidParameter;
    if (!router().isOpen(port))
        return portNotOpen;
    *netId = router().address();
    return noError;
}

void ZrFnxSimulatorSetLocalNetId(const FnxNetId* netId) {
    router().setAddress(netId);
}
