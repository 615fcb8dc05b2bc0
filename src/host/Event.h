#pragma once

#include <cstdint>
#include <utility>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include "host/Export.h"
#include "host/Text.h"
#include "host/Time.h"
#include "host/Value.h"

namespace ZrHmiSrv {

enum class Severity : std::uint32_t {
    verbose = 0,
    info = 1,
    warning = 2,
    error = 3,
    critical = 4,
    /// Outside the range on purpose: the extension's own log messages carry it.
    unspecified = 0xFFFFFFFF,
};

enum class AlarmState : std::uint32_t {
    standard = 0,
    invalid = 4,  ///< a logged alarm that the log never shows as cleared
};

enum class AlarmConfirmationState : std::uint32_t {
    none = 0,
    not_required = 1,
    pending = 2,
    confirmed = 3,
    lapsed = 4,
};

/// The client on whose behalf something happens.
class Session {
public:
    Session() noexcept = default;
    explicit Session(Text locale) noexcept : locale_name(std::move(locale)) {}
    /// The client's locale name, for example "de-DE".
    const char* locale() const noexcept { return locale_name.c_str(); }
    friend bool operator==(const Session&, const Session&) noexcept = default;

private:
    Text locale_name;
};

namespace detail {
struct AlarmData;
struct MessageData;
ZRHMISRV_API void intrusive_ptr_add_ref(const EventNode* node) noexcept;
ZRHMISRV_API void intrusive_ptr_release(const EventNode* node) noexcept;
}  // namespace detail

/// Base of host events: a handle to shared content that is copied when one of its handles is
/// changed, so a copy costs one counter. A default-constructed event owns nothing until it is
/// first set. An alarm or a message held as an Event stays what it is.
class ZRHMISRV_API Event {
public:
    Event() noexcept = default;
    Event(const Event& other);
    Event(Event&& other) noexcept;
    Event& operator=(const Event& other);
    Event& operator=(Event&& other) noexcept;
    ~Event();

    bool isset() const noexcept { return node != nullptr; }
    const Text& name() const noexcept;
    void set_name(Text name);
    const Text& domain() const noexcept;
    void set_domain(Text domain);
    /// The event's map of parameters, or the alarm or message that it carries.
    const Value& payload() const noexcept;
    /// For changes in place; the reference stays private to this handle, also when the event is
    /// copied afterwards. It is valid until the payload is set or the event is moved, assigned to
    /// or destroyed.
    Value& payload();
    void set_payload(Value payload);
    Timestamp time_received() const noexcept;
    void set_time_received(Timestamp time);
    const Session& session() const noexcept;
    void set_session(Session session);
    void swap(Event& other) noexcept {
        node.swap(other.node);
        std::swap(kind, other.kind);
    }

protected:
    explicit Event(ValueType kind) noexcept : kind(kind) {}

private:
    friend class Value;
    friend class Message;
    friend class Alarm;
    using Node = boost::intrusive_ptr<detail::EventNode>;
    Event(ValueType kind, Node node) noexcept : node(std::move(node)), kind(kind) {}
    detail::EventNode& edit();
    void become(ValueType kind);

    Node node;
    ValueType kind = ValueType::event;  ///< event, message or alarm, also while nothing is set
};

/// A one-shot event, also an entry of the server's log.
class ZRHMISRV_API Message : public Event {
public:
    Message() noexcept : Event(ValueType::message) {}

    Severity severity() const noexcept;
    void set_severity(Severity severity);
    Timestamp time_raised() const noexcept;
    void set_time_raised(Timestamp time);
    /// The payload under the name that messages use for it: "0", "1", ... or named parameters.
    const Value& parameters() const noexcept { return payload(); }
    Value& parameters() { return payload(); }

private:
    const detail::MessageData& data() const noexcept;
    detail::MessageData& edit_data();
};

/// An event with a life: raised, cleared, confirmed. Its payload is the map of its parameters.
class ZRHMISRV_API Alarm : public Event {
public:
    Alarm() noexcept : Event(ValueType::alarm) {}

    int id() const noexcept;
    void set_id(int id);
    Severity severity() const noexcept;
    void set_severity(Severity severity);
    Timestamp time_raised() const noexcept;
    void set_time_raised(Timestamp time);
    Timestamp time_cleared() const noexcept;
    void set_time_cleared(Timestamp time);
    Timestamp time_confirmed() const noexcept;
    void set_time_confirmed(Timestamp time);
    AlarmState alarm_state() const noexcept;
    void set_alarm_state(AlarmState state);
    AlarmConfirmationState confirmation_state() const noexcept;
    void set_confirmation_state(AlarmConfirmationState state);
    /// Not cleared, and not known to be invalid.
    bool is_active() const noexcept;

private:
    const detail::AlarmData& data() const noexcept;
    detail::AlarmData& edit_data();
};

}  // namespace ZrHmiSrv
