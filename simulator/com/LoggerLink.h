#pragma once

#include <memory>

#include "platform/Mutex.h"
#include "simulator/Simulator.h"

namespace ZrSimulator {

/// Which runtime a logger has addressed last, and its connection to it. Calls and references of
/// the logger count for that runtime; before it has addressed any, for every one. Any thread.
class LoggerLink {
public:
    explicit LoggerLink(Simulator& simulator);
    ~LoggerLink() { disconnect(); }

    /// Every call of the logger, but for `connect`, begins here; see Border.
    std::optional<HRESULT> enter(Operation operation);
    /// Addresses the runtime and lets the call in.
    HRESULT connect(Operation operation, const FnxNetId& netId, bool preloadTranslations);
    void disconnect();
    /// Null when the logger is not connected.
    std::shared_ptr<Runtime> runtime();

    void setTimeout(ULONG milliseconds);
    ULONG timeout();

    /// The sinks that are advised on the logger.
    SinkList& sinkList() { return *sinks; }
    void countReference(int change);
    void countAdvised(int change);

private:
    /// Makes the runtime of an address the logger's own; null when there is none.
    std::shared_ptr<Runtime> address(const FnxNetId& netId);
    void close() REQUIRES(mutex);
    void moveCounts(const std::shared_ptr<Border>& to) REQUIRES(mutex);
    void applyTimeout() REQUIRES(mutex);

    Simulator& simulator;
    const std::shared_ptr<SinkList> sinks = std::make_shared<SinkList>();

    Mutex mutex;
    std::shared_ptr<Border> border GUARDED_BY(mutex);
    std::shared_ptr<Runtime> addressed GUARDED_BY(mutex);
    std::shared_ptr<Connection> connection GUARDED_BY(mutex);
    ULONG timeoutMs GUARDED_BY(mutex) = 5000;
    long references GUARDED_BY(mutex) = 0;
    long advised GUARDED_BY(mutex) = 0;
};

}  // namespace ZrSimulator
