#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "host/Event.h"
#include "host/Result.h"
#include "platform/Mutex.h"
#include "server/metrics/PrometheusText.h"

namespace hmi {

/// What the server counts for each target system since it started. Beyond a thousand names the
/// rest counts as "other". Thread-safe.
class TargetMetrics {
public:
    /// A published event, by what the extension asked for: "raise", "message", ...
    void countHostCall(const ZrHmiSrv::Value& event, std::string_view operation);
    void countForgotten(const std::string& target);
    void countConfirmation(const std::string& target, ZrHmiSrv::ErrorValue result);
    /// An entry of the log: which of the notifications it tells of, and what the extension has
    /// measured itself.
    void countLogMessage(const ZrHmiSrv::Message& message);

    void write(PrometheusText& text) const;

private:
    /// By a label's value.
    using Counts = std::map<std::string, std::uint64_t, std::less<>>;
    struct Counters {
        Counts hostCalls;
        Counts notifications;
        Counts confirmations;
        Counts cacheLookUps;
        std::uint64_t forgotten = 0;
        std::uint64_t imports = 0;
        double importSeconds = 0;
        double lastNotification = 0;  ///< seconds since 1970
    };

    static void countNotification(Counters& counters, std::string_view kind);
    Counters& of(const std::string& target) REQUIRES(mutex);
    void writeCounts(PrometheusText& text, std::string_view name, std::string_view label,
                     std::string_view help, Counts Counters::*counts) const REQUIRES(mutex);

    mutable Mutex mutex;  ///< guards the counters; nothing is called under it
    std::map<std::string, Counters> targets GUARDED_BY(mutex);
};

}  // namespace hmi
