#include "simulator/com/LoggerLink.h"

#include "simulator/runtime/ProtocolError.h"

namespace ZrSimulator {

LoggerLink::LoggerLink(Simulator& simulator) : simulator(simulator), border(simulator.unbound()) {}

std::optional<HRESULT> LoggerLink::enter(Operation operation) {
    std::shared_ptr<Border> entered;
    {
        Lock lock(mutex);
        entered = border;
    }
    return entered->enter(operation);
}

HRESULT LoggerLink::connect(Operation operation, const FnxNetId& netId, bool preloadTranslations) {
    const auto target = address(netId);
    if (!target)
        return targetNotFound;
    if (const auto answer = target->clientBorder()->enter(operation))
        return *answer;
    Lock lock(mutex);
    if (addressed != target)
        return portNotOpen;
    if (connection && connection->open)
        return S_OK;
    const auto made = std::make_shared<Connection>(sinks, preloadTranslations);
    const HRESULT hr = target->connect(made);
    if (SUCCEEDED(hr))
        connection = made;
    return hr;
}

void LoggerLink::disconnect() {
    Lock lock(mutex);
    close();
}

std::shared_ptr<Runtime> LoggerLink::runtime() {
    Lock lock(mutex);
    return connection && connection->open ? addressed : nullptr;
}

void LoggerLink::setTimeout(ULONG milliseconds) {
    Lock lock(mutex);
    timeoutMs = milliseconds;
    applyTimeout();
}

ULONG LoggerLink::timeout() {
    Lock lock(mutex);
    return timeoutMs;
}

void LoggerLink::countReference(int change) {
    Lock lock(mutex);
    references += change;
    border->references += change;
}

void LoggerLink::countAdvised(int change) {
    Lock lock(mutex);
    advised += change;
    border->advised += change;
}

std::shared_ptr<Runtime> LoggerLink::address(const FnxNetId& netId) {
    const auto target = simulator.find(netId);
    Lock lock(mutex);
    if (target != addressed || border == simulator.unbound()) {
        close();
        addressed = target;
        // Without a runtime, the logger's calls and references are no runtime's.
        moveCounts(target ? target->clientBorder() : std::make_shared<Border>());
        applyTimeout();
    }
    return target;
}

void LoggerLink::close() {
    if (connection)
        addressed->disconnect(*connection);
    connection.reset();
}

void LoggerLink::moveCounts(const std::shared_ptr<Border>& to) {
    border->references -= references;
    border->advised -= advised;
    border = to;
    border->references += references;
    border->advised += advised;
}

void LoggerLink::applyTimeout() {
    if (addressed)
        border->faults.setTimeout(std::chrono::milliseconds(timeoutMs));
}

}  // namespace ZrSimulator
