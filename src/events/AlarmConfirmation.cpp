#include "events/AlarmConfirmation.h"

#include "events/DiagnosticMessage.h"
#include "targetsystem/proxy/CAtlException.h"

namespace ZrHmiEventLogger {

HRESULT AlarmConfirmation::confirm(int hostId) noexcept {
    static const ZrHmiSrv::Text name("CALL_CONFIRM");
    try {
        const auto alarm = store.pin(hostId);
        if (!alarm)
            return E_FAIL;
        context.logging.logMessage(diagnosticMessage(name, {context.targetName, hostId}));
        // It may have ended meanwhile, or another object may stand for it now.
        const auto current = store.pin(hostId);
        return current && current->get() == alarm->get() ? call(alarm) : E_FAIL;
    } catch (...) {
        reportCurrentException(context.logging, context.targetName);
        return E_FAIL;
    }
}

HRESULT AlarmConfirmation::call(const EventStore::AlarmPointer& alarm) {
    Lock lock(confirmMutex);
    context.proceed();
    const HRESULT hr = alarm->get()->Confirm();
    lock.unlock();
    return ZrAtlCom::check(hr);
}

}  // namespace ZrHmiEventLogger
