#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "host/Event.h"
#include "server/events/Confirmation.h"
#include "server/events/EventId.h"
#include "server/events/SearchText.h"

namespace hmi {

/// An alarm or a message, whichever the extension handed over.
struct EventContent {
    std::variant<ZrHmiSrv::Alarm, ZrHmiSrv::Message> event;
    /// When not set it is the time raised: live events leave it open.
    ZrHmiSrv::Timestamp timeReceived;
};

/// The alarm or message that an event is or carries; nothing if it is neither.
std::optional<EventContent> contentOf(const ZrHmiSrv::Event& event);

/// Place in the list: newest first, of the same time the last arrived first.
struct EventPosition {
    ZrHmiSrv::Timestamp time;
    std::uint64_t arrival = 0;

    friend bool operator<(const EventPosition& a, const EventPosition& b) noexcept {
        return a.time != b.time ? b.time < a.time : b.arrival < a.arrival;
    }
};

enum class EventLife : std::uint8_t {
    other,   ///< a message, or an alarm of which neither is known
    active,  ///< not cleared, not invalid, not ended by the extension
    cleared,
};

/// What filters and orders tell events apart by, but for target system and time.
struct EventShape {
    EventKind kind;
    EventLife life;
    bool unconfirmed;
    std::uint32_t severity;
    std::uint64_t priority;  ///< what an operator has to look at first has the smallest

    friend bool operator==(const EventShape&, const EventShape&) = default;
};

/// A number that is found out when somebody wants to know it. Thread-safe.
class LazyHash {
public:
    LazyHash() = default;
    LazyHash(const LazyHash& other) noexcept : known(other.known.load(std::memory_order_relaxed)) {}
    LazyHash& operator=(const LazyHash&) = delete;

    template <class Compute>
    std::size_t get(Compute compute) const {
        std::size_t hash = known.load(std::memory_order_relaxed);
        if (hash == 0) {
            hash = compute();
            known.store(hash, std::memory_order_relaxed);
        }
        return hash;
    }

private:
    mutable std::atomic<std::size_t> known = 0;
};

/// An event as the server keeps it. Immutable and shared between threads: a change of an event
/// makes a new record.
struct EventRecord : EventShape {
private:
    LazySearchText searched;  // first: a search looks at nothing else of most records

public:
    /// `arrival` counts up over all records; a message is named by it. `ended`: the extension has
    /// ended the life of this alarm.
    EventRecord(EventContent content, std::uint64_t arrival, bool ended = false);

    const ZrHmiSrv::Event& event() const noexcept;
    /// Null for a message.
    const ZrHmiSrv::Alarm* alarm() const noexcept { return std::get_if<0>(&content.event); }
    EventContent content;
    bool ended;
    EventPosition position;
    EventId id;
    std::string target;  ///< as `targetOf` tells it
    /// Equal for equal parameters.
    std::size_t payloadHash() const;
    /// Of messages: equal for those that are the same to the extension.
    std::size_t contentHash() const;
    /// What a search looks through.
    const std::string& searchText(SearchTexts& texts) const {
        return searched.get([this]() -> const auto& { return event(); }, texts);
    }

    // Set before the record is shared.
    ConfirmationPtr confirmation = {};  ///< null until somebody asks for it
    /// Set when its target system was lost, and nobody can say whether it still holds.
    ZrHmiSrv::Timestamp lastKnownSince = {};

private:
    LazyHash hash;
};

using EventRecordPtr = std::shared_ptr<const EventRecord>;

/// The target system that an alarm or a message names; empty when it names none.
std::string targetOf(const ZrHmiSrv::Value& parameters);

/// The severity of an event that has none.
inline constexpr std::uint32_t noSeverity = std::numeric_limits<std::uint32_t>::max();

/// Records with a smaller priority than this are unconfirmed, and no others.
inline constexpr std::uint64_t priorityOfConfirmed = std::uint64_t{2} << 32;

/// Those with this or a greater one are neither unconfirmed nor active.
inline constexpr std::uint64_t priorityOfRest = std::uint64_t{3} << 32;

/// Whether two messages are the same to the extension, which does not number them.
bool isSameMessage(const EventRecord& a, const EventRecord& b);

}  // namespace hmi
