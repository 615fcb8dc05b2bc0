#include "events/AlarmConfirmation.h"

#include "events/DiagnosticMessage.h"
#include "targetsystem/proxy/CAtlException.h"

namespace ZrHmiEventLogger {

HRESULT AlarmConfirmation::confirm(int hostId) noexcept {
    try {
        static const ZrHmiSrv::Text name = ZrHmiSrv::Text::constant("CALL_CONFIRM");
        const auto alarm = store.pin(hostId);
        if (!alarm)
            return E_FAIL;
        context.logging.logMessage(diagnosticMessage(name, {context.targetName, hostId}));
        return call(hostId, alarm);
    } catch (...) {
        reportCurrentException(context.logging, context.targetName);
        return E_FAIL;
    }
}

HRESULT AlarmConfirmation::call(int hostId, const EventStore::AlarmPointer& alarm) {
    EventStore::AlarmPointer current;  // released without the lock
    Lock lock(confirmMutex);
    context.proceed();
    // It may have ended while the host was told or another confirmation hung, or another object
    // may stand for it now.
    current = store.pin(hostId);
    if (!current || current->get() != alarm->get())
        return E_FAIL;
    const HRESULT hr = alarm->get()->Confirm();
    lock.unlock();
    return ZrAtlCom::check(hr);
}

}  // namespace ZrHmiEventLogger
