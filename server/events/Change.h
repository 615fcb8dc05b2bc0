#pragma once

#include <cstdint>
#include <memory>

#include "host/Event.h"
#include "server/events/EventRecord.h"

namespace hmi {

/// A message that the extension wrote to the server's log; `sequence` counts from 0.
struct LogEntry {
    std::uint64_t sequence;
    ZrHmiSrv::Message message;
};

enum class ChangeType : std::uint8_t { raised, updated, removed, message, forgotten, reset, log };

/// Something that happened to the events or the log. `event` is null for reset and log, `entry`
/// for all but log.
struct Change {
    ChangeType type;
    EventRecordPtr event;
    std::shared_ptr<const LogEntry> entry;
};

/// Where changes are told, in the order in which they happened. Called with the mutex of the book
/// held that changed: `post` is quick, waits for nothing and does not call back.
class IChangeSink {
public:
    virtual void post(Change change) noexcept = 0;

protected:
    ~IChangeSink() = default;
};

}  // namespace hmi
