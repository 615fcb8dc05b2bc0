#pragma once

#include <atomic>
#include <cstdint>

#include "events/EventContext.h"
#include "host/Text.h"
#include "targetsystem/TargetLogging.h"
#include "targetsystem/TargetSystemSettings.h"

namespace ZrHmiEventLogger {

/// What all target systems share, whatever the kind of their connection.
class TargetSystemBase {
public:
    const ZrHmiSrv::Text& name() const { return settings.name; }
    const std::string& configuredAddress() const { return settings.address; }
    bool isEnabled() const { return settings.enabled; }
    ZrHmiSrv::Timespan timeout() const { return settings.timeout; }
    /// Meant to stay disconnected. Any thread.
    bool IsDisabled() const { return disabled; }
    /// Replaced, removed or about to end with the extension. Any thread.
    bool isRetired() const { return retired; }

protected:
    TargetSystemBase(TargetSystemSettings given, ZrHmiSrv::Text domain, ILoggingFunctions& host,
                     const std::atomic<bool>& stopFlag, std::atomic<std::int32_t>& hostIds)
        : settings(std::move(given)),
          logging(host),
          context{settings.name,       std::move(domain), logging,  hostIds,
                  settings.eventLimit, settings.timeout,  stopFlag, retired} {}
    ~TargetSystemBase() = default;

    const TargetSystemSettings settings;
    std::atomic<bool> disabled = false;
    std::atomic<bool> retired = false;  ///< never connects again, and tells the host nothing
    TargetLogging logging;
    const EventContext context;
};

}  // namespace ZrHmiEventLogger
