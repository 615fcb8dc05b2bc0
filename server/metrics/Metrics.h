#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "host/Event.h"
#include "platform/Mutex.h"
#include "server/metrics/Histogram.h"
#include "server/metrics/TargetMetrics.h"

namespace hmi {

/// What the server counts of its own work since it started. Thread-safe.
class Metrics {
public:
    static constexpr std::size_t slots = 20;

    void countHostCall(std::size_t slot) noexcept { ++hostCalls[slot]; }
    void countReset(std::chrono::nanoseconds duration) noexcept {
        ++resets;
        resetNanoseconds += static_cast<std::uint64_t>(duration.count());
    }
    void countStreamClients(int joined) noexcept { streamClients += joined; }
    void countSlowClient() noexcept { ++slowClients; }
    void countRequest(unsigned status) noexcept { ++requests[status / 100 % 6]; }
    void observeRequest(std::chrono::nanoseconds duration) noexcept {
        requestTimes.observe(duration);
    }
    void observeConfirmation(std::chrono::nanoseconds duration) noexcept {
        confirmationTimes.observe(duration);
    }
    void observeNotification(std::chrono::nanoseconds duration) noexcept {
        notificationTimes.observe(duration);
    }
    void countAbandonedRequest() noexcept { ++abandonedRequests; }
    /// By name and the target system that it is about. Beyond a thousand of these the rest counts
    /// as "other".
    void countLogMessage(const ZrHmiSrv::Message& message);

    /// All counters in Prometheus' text format.
    std::string text() const;

    TargetMetrics targets;

private:
    std::uint64_t& logCounter(std::string_view name, std::string_view target) REQUIRES(mutex);

    std::array<std::atomic<std::uint64_t>, slots> hostCalls{};
    std::array<std::atomic<std::uint64_t>, 6> requests{};  ///< by the hundreds of their status
    Histogram requestTimes;
    Histogram confirmationTimes;
    Histogram notificationTimes{Histogram::ofCalls};
    std::atomic<std::uint64_t> abandonedRequests = 0;
    std::atomic<std::uint64_t> resets = 0;
    std::atomic<std::uint64_t> resetNanoseconds = 0;
    std::atomic<std::int64_t> streamClients = 0;
    std::atomic<std::uint64_t> slowClients = 0;
    mutable Mutex mutex;  ///< guards the map; nothing is called under it
    /// By target system and name.
    using Counts = std::map<std::string, std::uint64_t, std::less<>>;
    std::map<std::string, Counts, std::less<>> logMessages GUARDED_BY(mutex);
    std::size_t logNames GUARDED_BY(mutex) = 0;  ///< in all of them
};

}  // namespace hmi
