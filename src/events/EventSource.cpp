#include "events/EventSource.h"

#include "targetsystem/proxy/CAtlException.h"
#include "targetsystem/proxy/Guid.h"
#include "targetsystem/proxy/ReceiveText.h"

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
        name = ZrAtlCom::receiveText(&IZrEvent::get_SourceName, event);
    }
    if (has(context, event, SourceAttribute::guid))
        guid = ZrAtlCom::guidText(context.read(event, &IZrEvent::get_SourceGuid));
}

}  // namespace ZrHmiEventLogger
