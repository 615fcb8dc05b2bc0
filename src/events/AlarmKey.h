#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include <boost/container_hash/hash.hpp>

#include "events/EventContext.h"
#include "host/Time.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// Tells which alarm a proxy alarm stands for, also when another object stands for it after a
/// reconnection.
struct AlarmKey {
    ZrHmiSrv::Timestamp timeRaised;
    std::optional<std::uint32_t> number;  ///< the instance id, where the logger has one
    friend bool operator==(const AlarmKey&, const AlarmKey&) = default;
};

/// The key of a live or logged alarm, read from it. Throws ZrAtlCom::CAtlException
/// and Abandoned.
template <class Source>
AlarmKey alarmKeyOf(const EventContext& context, Source& source) {
    using ZrEventLoggerFnxProxyLib::IZrEvent;
    using ZrEventLoggerFnxProxyLib::IZrEventInstance;
    AlarmKey key{toTimestamp(context.read(source, &IZrEvent::get_TimeRaised)), {}};
    if (const auto instance = context.query<IZrEventInstance>(source))
        key.number = context.read(*instance, &IZrEventInstance::get_InstanceId);
    return key;
}

/// What stays the same when a live alarm is raised again, at another time.
struct AlarmInstance {
    GUID eventClass;
    std::uint32_t number;
    friend bool operator==(const AlarmInstance&, const AlarmInstance&) = default;
};

/// None where the logger does not number its alarms. Throws as alarmKeyOf does.
template <class Source>
std::optional<AlarmInstance> alarmInstanceOf(const EventContext& context, Source& source,
                                             const AlarmKey& key) {
    using ZrEventLoggerFnxProxyLib::IZrEvent;
    if (!key.number)
        return std::nullopt;
    return AlarmInstance{context.read(source, &IZrEvent::get_EventClass), *key.number};
}

}  // namespace ZrHmiEventLogger

template <>
struct std::hash<ZrHmiEventLogger::AlarmKey> {
    std::size_t operator()(const ZrHmiEventLogger::AlarmKey& key) const noexcept {
        std::size_t seed = std::hash<std::int64_t>()(key.timeRaised.nanoseconds());
        boost::hash_combine(seed, key.number ? *key.number + 1ULL : 0ULL);
        return seed;
    }
};

template <>
struct std::hash<ZrHmiEventLogger::AlarmInstance> {
    std::size_t operator()(const ZrHmiEventLogger::AlarmInstance& instance) const noexcept {
        return instance.number;
    }
};
