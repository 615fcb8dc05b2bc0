#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include <boost/container_hash/hash.hpp>

#include "events/EventContext.h"
#include "host/Time.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// Tells which alarm a proxy object stands for, also when another object stands for it after a
/// reconnection. Where the logger numbers its alarms, number and time are enough; where it does
/// not, it is what has happened where and when.
struct AlarmKey {
    ZrHmiSrv::Timestamp timeRaised;
    std::optional<std::uint32_t> number;  ///< the instance id, where the logger has one
    std::size_t origin = 0;               ///< else a digest of class, id and source
    friend bool operator==(const AlarmKey&, const AlarmKey&) = default;
};

/// The key of a live or logged alarm, read from it. Throws ZrAtlCom::CAtlException and Abandoned.
AlarmKey alarmKeyOf(const EventContext& context, ZrEventLoggerFnxProxyLib::IZrEvent& source);

/// What stays the same when a live alarm is raised again, at another time.
struct AlarmInstance {
    std::optional<std::uint32_t> number;
    std::size_t origin;  ///< a digest of the class, where there is no number also of id and source
    friend bool operator==(const AlarmInstance&, const AlarmInstance&) = default;
};

/// Of the alarm that has this key. Throws as alarmKeyOf does.
AlarmInstance alarmInstanceOf(const EventContext& context,
                              ZrEventLoggerFnxProxyLib::IZrEvent& source, const AlarmKey& key);

}  // namespace ZrHmiEventLogger

template <>
struct std::hash<ZrHmiEventLogger::AlarmKey> {
    std::size_t operator()(const ZrHmiEventLogger::AlarmKey& key) const noexcept {
        std::size_t seed = std::hash<std::int64_t>()(key.timeRaised.nanoseconds());
        boost::hash_combine(seed, key.number ? *key.number + 1ULL : 0ULL);
        boost::hash_combine(seed, key.origin);
        return seed;
    }
};

template <>
struct std::hash<ZrHmiEventLogger::AlarmInstance> {
    std::size_t operator()(const ZrHmiEventLogger::AlarmInstance& instance) const noexcept {
        return instance.origin + instance.number.value_or(0);
    }
};
