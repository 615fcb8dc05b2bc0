#include "host/Event.h"

#include "host/EventNodes.h"

namespace ZrHmiSrv {

namespace {

const detail::EventFields& unset_fields() noexcept {
    static const detail::EventFields fields;
    return fields;
}

boost::intrusive_ptr<detail::EventNode> create_node(ValueType kind) {
    detail::EventNode* node = nullptr;
    if (kind == ValueType::alarm)
        node = new detail::AlarmNode;
    else if (kind == ValueType::message)
        node = new detail::MessageNode;
    else
        node = new detail::EventNode;
    return {node, false};
}

}  // namespace

void detail::intrusive_ptr_add_ref(const EventNode* node) noexcept {
    node->retain();
}

void detail::intrusive_ptr_release(const EventNode* node) noexcept {
    if (node->release())
        delete node;
}

Event::Event(const Event& other) : node(detail::share(other.node.get())), kind(other.kind) {}

Event::Event(Event&& other) noexcept : node(std::move(other.node)), kind(other.kind) {
    detail::seal(node.get());
}

Event& Event::operator=(const Event& other) {
    return *this = Event(other);
}

Event& Event::operator=(Event&& other) noexcept {
    Event taken(std::move(other));
    swap(taken);
    return *this;
}

Event::~Event() = default;

detail::EventNode& Event::edit() {
    if (!node)
        node = create_node(kind);
    else if (!node->unique())
        node = Node(node->clone(), false);
    return *node;
}

/// An assignment through the base class can have made another kind of this handle: what all kinds
/// have is kept.
void Event::become(ValueType wanted) {
    if (kind == wanted)
        return;
    Node changed;
    if (node) {
        changed = create_node(wanted);
        changed->fields = node->fields;
    }
    node = std::move(changed);
    kind = wanted;
}

const Text& Event::name() const noexcept {
    return node ? node->fields.name : unset_fields().name;
}

void Event::set_name(Text name) {
    edit().fields.name = std::move(name);
}

const Text& Event::domain() const noexcept {
    return node ? node->fields.domain : unset_fields().domain;
}

void Event::set_domain(Text domain) {
    edit().fields.domain = std::move(domain);
}

const Value& Event::payload() const noexcept {
    return node ? node->fields.payload : unset_fields().payload;
}

Value& Event::payload() {
    detail::EventNode& own = edit();
    own.expose();
    return own.fields.payload;
}

void Event::set_payload(Value payload) {
    detail::EventNode& own = edit();
    own.fields.payload = std::move(payload);
    own.seal();
}

Timestamp Event::time_received() const noexcept {
    return node ? node->fields.time_received : Timestamp();
}

void Event::set_time_received(Timestamp time) {
    edit().fields.time_received = time;
}

const Session& Event::session() const noexcept {
    return node ? node->fields.session : unset_fields().session;
}

void Event::set_session(Session session) {
    edit().fields.session = std::move(session);
}

}  // namespace ZrHmiSrv
