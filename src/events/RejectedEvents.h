#pragma once

#include <atomic>
#include <cstdint>

#include "events/EventContext.h"
#include "events/EventStore.h"
#include "events/MalformedEvent.h"

namespace ZrHmiEventLogger {

/// The events of one target system that were left out because they contradict themselves: each is
/// reported and counted. Any thread.
class RejectedEvents {
public:
    RejectedEvents(const EventContext& context, EventStore& store)
        : context(context), store(store) {}

    /// Does what concerns one event, unless that cannot be done with it. Passes on all that `step`
    /// throws but MalformedEvent, which makes it false.
    template <class Step>
    bool unlessMalformed(Step step) {
        try {
            step();
            return true;
        } catch (const MalformedEvent& exception) {
            add(exception);
            return false;
        }
    }
    std::uint64_t count() const { return rejected; }

private:
    void add(const MalformedEvent& exception) EXCLUDES(store.publishMutex);

    const EventContext& context;
    EventStore& store;
    std::atomic<std::uint64_t> rejected = 0;
};

}  // namespace ZrHmiEventLogger
