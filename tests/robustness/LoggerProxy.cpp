#include "robustness/LoggerProxy.h"

#include "robustness/AlarmProxy.h"
#include "robustness/CollectionProxy.h"
#include "robustness/ConnectionPointProxy.h"
#include "robustness/ConnectionSettingsProxy.h"
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

HRESULT LoggerProxy::ConnectWithSettings(IZrConnectionSettings* settings, BSTR netId) {
    return forward(__func__, &IZrEventLogger4::ConnectWithSettings,
                   static_cast<ConnectionSettingsProxy*>(settings)->real(), netId);
}

HRESULT LoggerProxy::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
    return wrap<ConnectionPointProxy>(
        forward(__func__, &IConnectionPointContainer::FindConnectionPoint, iid, point), point);
}

}  // namespace bridge_test
