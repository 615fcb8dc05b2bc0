#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/Event.h"
#include "server/events/EventRecord.h"

namespace hmi {

/// A message that the extension wrote to the server's log; `sequence` counts from 0.
struct LogEntry {
    std::uint64_t sequence;
    ZrHmiSrv::Message message;
};

enum class ChangeType : std::uint8_t {
    raised,
    updated,
    removed,
    message,
    forgotten,
    reset,
    log,
    texts,         ///< localized texts are known now that a reader had to go without
    confirmation,  ///< an operator's confirmation goes on its way
    target,        ///< a target system is in another state
    gap,           ///< events of a target system may be missing
    alive,         ///< nothing, but the server lives
    history,       ///< the history is in another state
};
inline constexpr std::size_t changeTypes = 13;

/// The events that a target system has handed over as all of its own, in no order.
struct Replacement {
    std::string target;
    std::vector<EventRecordPtr> events;
    bool isComplete = true;  ///< there are no others: it has been imported
};

struct TargetStatus;
struct Gap;
struct HistoryStatus;

/// Something that happened to the events or the log. `event` is there for a single event, `entry`
/// for the log, `target`, `gap` and `history` for theirs. A reset with a replacement: the target system has
/// these events and no others; one without: all target systems have handed over theirs.
struct Change {
    ChangeType type;
    EventRecordPtr event = {};
    std::shared_ptr<const LogEntry> entry = {};
    std::shared_ptr<const Replacement> replacement = {};
    std::shared_ptr<const TargetStatus> target = {};
    std::shared_ptr<const Gap> gap = {};
    std::shared_ptr<const HistoryStatus> history = {};
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
