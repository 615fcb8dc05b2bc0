/// The shared content of events. A node is of the class that its handle's kind says.
#pragma once

#include "host/Event.h"

namespace ZrHmiSrv::detail {

struct EventFields {
    Text name;
    Text domain;
    Value payload;
    Timestamp time_received;
    Session session;

    friend bool operator==(const EventFields&, const EventFields&) noexcept = default;
};

struct MessageData {
    Severity severity = Severity::verbose;
    Timestamp time_raised;

    friend bool operator==(const MessageData&, const MessageData&) noexcept = default;
};

struct AlarmData {
    int id = 0;
    Severity severity = Severity::verbose;
    Timestamp time_raised;
    Timestamp time_cleared;
    Timestamp time_confirmed;
    AlarmState state = AlarmState::standard;
    AlarmConfirmationState confirmation = AlarmConfirmationState::none;

    friend bool operator==(const AlarmData&, const AlarmData&) noexcept = default;
};

struct EventNode : Shareable {
    EventNode() = default;
    EventNode(const EventNode&) = default;
    virtual ~EventNode() = default;
    virtual EventNode* clone() const { return new EventNode(*this); }
    /// Of two nodes of one class.
    virtual bool equals(const EventNode& other) const noexcept { return fields == other.fields; }

    EventFields fields;
};

/// A node that adds the data of a message or alarm.
template <class Data>
struct ExtendedNode final : EventNode {
    ExtendedNode* clone() const override { return new ExtendedNode(*this); }
    bool equals(const EventNode& other) const noexcept override {
        return EventNode::equals(other) && data == static_cast<const ExtendedNode&>(other).data;
    }

    Data data;
};

using MessageNode = ExtendedNode<MessageData>;
using AlarmNode = ExtendedNode<AlarmData>;

/// For another owner: the node itself, or a copy while a reference into it is handed out.
inline boost::intrusive_ptr<EventNode> share(EventNode* node) {
    if (node && node->is_exposed())
        return boost::intrusive_ptr<EventNode>(node->clone(), false);
    return boost::intrusive_ptr<EventNode>(node);
}

/// No reference into the event's payload is in use any more.
inline void seal(EventNode* node) noexcept {
    if (node)
        node->seal();
}

}  // namespace ZrHmiSrv::detail
