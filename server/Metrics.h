#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "host/Event.h"
#include "host/Result.h"
#include "platform/Mutex.h"

namespace hmi {

/// What the server counts of its own work since it started. Thread-safe.
class Metrics {
public:
    static constexpr std::size_t slots = 20;

    void countHostCall(std::size_t slot) noexcept { ++hostCalls[slot]; }
    void countForgotten() noexcept { ++forgotten; }
    void countReset(std::chrono::nanoseconds duration) noexcept {
        ++resets;
        resetNanoseconds += static_cast<std::uint64_t>(duration.count());
    }
    void countStreamClients(int joined) noexcept { streamClients += joined; }
    void countSlowClient() noexcept { ++slowClients; }
    void countRequest(unsigned status) noexcept { ++requests[status / 100 % 6]; }
    void countConfirmation(ZrHmiSrv::ErrorValue result);
    /// By name and the target system that it is about. Beyond a thousand of these the rest counts
    /// as "other". What the extension measures itself, it tells in such messages.
    void countLogMessage(const ZrHmiSrv::Message& message);

    /// All counters in Prometheus' text format.
    std::string text() const;

private:
    std::uint64_t& logCounter(std::string name, std::string target) REQUIRES(mutex);
    std::array<std::atomic<std::uint64_t>, slots> hostCalls{};
    std::array<std::atomic<std::uint64_t>, 6> requests{};  ///< by the hundreds of their status
    std::atomic<std::uint64_t> forgotten = 0;
    std::atomic<std::uint64_t> resets = 0;
    std::atomic<std::uint64_t> resetNanoseconds = 0;
    std::atomic<std::int64_t> streamClients = 0;
    std::atomic<std::uint64_t> slowClients = 0;
    mutable Mutex mutex;  ///< guards the maps; nothing is called under it
    std::map<std::uint32_t, std::uint64_t> confirmations GUARDED_BY(mutex);
    std::map<std::pair<std::string, std::string>, std::uint64_t> logMessages GUARDED_BY(mutex);
    std::map<std::string, double> importSeconds GUARDED_BY(mutex);  ///< by target system
};

}  // namespace hmi
