#include "events/EventSource.h"

#include "events/TextPool.h"
#include "platform/Text.h"
#include "targetsystem/proxy/CAtlException.h"

using namespace ZrEventLoggerFnxProxyLib;

namespace ZrHmiEventLogger {

namespace {

bool has(const EventContext& context, IZrEvent& event, SourceAttribute kind) {
    context.proceed();
    VARIANT_BOOL answer = VARIANT_FALSE;
    ZrAtlCom::check(event.HasSource(kind, &answer));
    return answer == VARIANT_TRUE;
}

}  // namespace

EventSource::EventSource(const EventContext& context, IZrEvent& event) {
    if (has(context, event, SourceAttribute::id))
        id = context.read(event, &IZrEvent::get_SourceId);
    if (has(context, event, SourceAttribute::name)) {
        context.proceed();
        ScopedBstr received;
        ZrAtlCom::check(event.get_SourceName(received.put()));
        name = texts().of(received.get());
    }
    if (has(context, event, SourceAttribute::guid))
        guid = texts().of(context.read(event, &IZrEvent::get_SourceGuid));
}

}  // namespace ZrHmiEventLogger
