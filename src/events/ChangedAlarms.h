#pragma once

#include <cstdint>

#include "events/EventContext.h"
#include "events/EventStore.h"
#include "events/ImportedIdentities.h"
#include "events/RecordedCallback.h"

namespace ZrHmiEventLogger {

/// Who hears of a change of the store.
enum class Audience : std::uint8_t { nobody, log, logAndHost };

/// What becomes of an alarm that is cleared or confirmed. Called with sinkMutex held; throws what
/// the proxy threw, or Abandoned, having changed nothing.
class ChangedAlarms {
public:
    ChangedAlarms(const EventContext& context, EventStore& store, ImportedIdentities& identities)
        : context(context), store(store), identities(identities) {}

    void change(const RecordedCallback& notification, Audience audience);

private:
    using IZrAlarm = ZrEventLoggerFnxProxyLib::IZrAlarm;
    using Container = EventStore::Container;
    struct Change;

    Change read(const RecordedCallback& notification) const;
    void tell(const Change& change, const ZrHmiSrv::Alarm& alarm, Audience audience);
    void tellUnknown(const Change& change, Audience audience);
    Container::Entry* find(const Container& events, const Change& change) const;

    const EventContext& context;
    EventStore& store;
    ImportedIdentities& identities;
};

}  // namespace ZrHmiEventLogger
