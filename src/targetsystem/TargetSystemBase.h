#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "events/EventContext.h"
#include "host/Text.h"
#include "host/Time.h"

namespace ZrHmiEventLogger {

/// What one target system is created with.
struct TargetSystemSettings {
    ZrHmiSrv::Text name;
    std::string netId;
    bool enabled = false;  ///< whether the configuration connects it when it is created
    ZrHmiSrv::Timespan timeout;
    std::int64_t eventLimit = 0;
};

/// What all target systems share, whatever the kind of their connection.
class TargetSystemBase {
public:
    const ZrHmiSrv::Text& name() const { return settings.name; }
    const std::string& netId() const { return settings.netId; }
    bool isEnabled() const { return settings.enabled; }
    /// Meant to stay disconnected. Any thread.
    bool IsDisabled() const { return disabled; }

protected:
    TargetSystemBase(TargetSystemSettings settings, ZrHmiSrv::Text domain,
                     ILoggingFunctions& logging, const std::atomic<bool>& stopFlag,
                     std::atomic<std::int32_t>& hostIds)
        : settings(std::move(settings)),
          context{this->settings.name, std::move(domain), logging, hostIds,
                  this->settings.eventLimit, this->settings.timeout, stopFlag, retired},
          logging(logging),
          stopFlag(stopFlag) {}
    ~TargetSystemBase() = default;

    /// Notifications are dropped: the extension stops, or this target was replaced or removed.
    bool dropsNotifications() const { return context.isOver(); }

    const TargetSystemSettings settings;
    const EventContext context;
    ILoggingFunctions& logging;
    const std::atomic<bool>& stopFlag;
    std::atomic<bool> disabled = false;
    std::atomic<bool> retired = false;  ///< never connects again
};

}  // namespace ZrHmiEventLogger
