#include "events/AlarmKey.h"

#include <string_view>

#include "events/EventSource.h"
#include "events/TextPool.h"

using namespace ZrEventLoggerFnxProxyLib;

namespace ZrHmiEventLogger {

namespace {

template <class T>
void combine(std::size_t& seed, const std::optional<T>& part) {
    boost::hash_combine(seed, part ? std::hash<T>()(*part) + 1 : 0);
}

std::optional<std::string_view> viewOf(const std::optional<ZrHmiSrv::Text>& text) {
    return text ? std::optional(text->view()) : std::nullopt;
}

std::size_t classOf(const EventContext& context, IZrEvent& event) {
    const auto text = texts().of(context.read(event, &IZrEvent::get_EventClass));
    return std::hash<std::string_view>()(text.view());
}

std::size_t originOf(const EventContext& context, IZrEvent& event) {
    const EventSource source(context, event);
    std::size_t seed = classOf(context, event);
    boost::hash_combine(seed, context.read(event, &IZrEvent::get_EventId));
    combine(seed, source.id);
    combine(seed, viewOf(source.name));
    combine(seed, viewOf(source.guid));
    return seed;
}

}  // namespace

AlarmKey alarmKeyOf(const EventContext& context, IZrEvent& source) {
    AlarmKey key{toTimestamp(context.read(source, &IZrEvent::get_TimeRaised)), {}};
    if (const auto instance = context.query<IZrEventInstance>(source))
        key.number = context.read(*instance, &IZrEventInstance::get_InstanceId);
    else
        key.origin = originOf(context, source);
    return key;
}

AlarmInstance alarmInstanceOf(const EventContext& context, IZrEvent& source, const AlarmKey& key) {
    return {key.number, key.number ? classOf(context, source) : key.origin};
}

}  // namespace ZrHmiEventLogger
