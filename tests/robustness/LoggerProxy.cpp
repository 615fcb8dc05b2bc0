#include "robustness/LoggerProxy.h"

#include "robustness/AlarmProxy.h"
#include "robustness/CauseRemedyProxy.h"
#include "robustness/CollectionProxy.h"
#include "robustness/ConnectionPointProxy.h"
#include "robustness/ConnectionSettingsProxy.h"
#include "robustness/DetailProxy.h"
#include "robustness/LoggedEventProxy.h"

using namespace ZrEventLoggerFnxProxyLib;

namespace bridge_test {

HRESULT LoggerProxy::GetActiveAlarms(IZrAlarmCollection** alarms) {
    using Alarms = CollectionProxy<IZrAlarmCollection, IZrAlarm, AlarmProxy>;
    return wrap<Alarms>(forward(__func__, &IZrEventLogger4::GetActiveAlarms, alarms), alarms);
}

HRESULT LoggerProxy::GetLoggedEvents(ULONG count, IZrLoggedEventCollection** events) {
    using Events = CollectionProxy<IZrLoggedEventCollection, IZrLoggedEvent, LoggedEventProxy>;
    return wrap<Events>(forward(__func__, &IZrEventLogger4::GetLoggedEvents, count, events),
                        events);
}

HRESULT LoggerProxy::GetCauseRemedy(REFGUID eventClass, ULONG eventId, LCID lcid,
                                    IZrCauseRemedyCollection** entries) {
    using Entries = CollectionProxy<IZrCauseRemedyCollection, IZrCauseRemedy, CauseRemedyProxy>;
    return wrap<Entries>(
        forward(__func__, &IZrEventLogger4::GetCauseRemedy, eventClass, eventId, lcid, entries),
        entries);
}

HRESULT LoggerProxy::GetDetails(REFGUID eventClass, ULONG eventId, LCID lcid,
                                IZrDetailCollection** details) {
    using Details = CollectionProxy<IZrDetailCollection, IZrDetail, DetailProxy>;
    return wrap<Details>(
        forward(__func__, &IZrEventLogger4::GetDetails, eventClass, eventId, lcid, details),
        details);
}

HRESULT LoggerProxy::ConnectWithSettings(IZrConnectionSettings* settings, BSTR netId) {
    return forward(__func__, &IZrEventLogger4::ConnectWithSettings,
                   static_cast<ConnectionSettingsProxy*>(settings)->real(), netId);
}

HRESULT LoggerProxy::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
    return wrap<ConnectionPointProxy>(
        forward(__func__, &IConnectionPointContainer::FindConnectionPoint, iid, point), point);
}

}  // namespace bridge_test
