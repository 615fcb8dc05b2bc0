#pragma once

#include "events/EventContext.h"
#include "events/EventStore.h"
#include "platform/Mutex.h"

namespace ZrHmiEventLogger {

/// An operator's way back to the logger. Any thread, with no lock held.
class AlarmConfirmation {
public:
    AlarmConfirmation(const EventContext& context, EventStore& store)
        : context(context), store(store) {}

    /// E_FAIL when no live alarm has this id, or its confirmation failed, which is reported.
    HRESULT confirm(int hostId) noexcept EXCLUDES(confirmMutex);

private:
    HRESULT call(int hostId, const EventStore::AlarmPointer& alarm) EXCLUDES(confirmMutex);

    const EventContext& context;
    EventStore& store;
    Mutex confirmMutex;  ///< one Confirm of a target at a time; held across it
};

}  // namespace ZrHmiEventLogger
