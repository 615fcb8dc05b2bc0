#include "host/Value.h"

#include <new>
#include <stdexcept>
#include <vector>

#include "host/EventNodes.h"
#include "host/ValueNodes.h"

namespace ZrHmiSrv {

static_assert(sizeof(Value) == 16);

namespace {

detail::VectorNode* create(const detail::VectorNode*) {
    return new detail::VectorNode;
}
detail::MapNode* create(const detail::MapNode*) {
    return detail::MapNode::create();
}

detail::VectorNode* copy(const detail::VectorNode& node) {
    return new detail::VectorNode(node);
}
detail::MapNode* copy(const detail::MapNode& node) {
    return detail::MapNode::copy(node);
}

/// For another owner: the node itself, or a copy while references into it are handed out.
template <class Node>
Node* share(Node* node) {
    if (!node)
        return nullptr;
    if (node->is_exposed())
        return copy(*node);
    node->retain();
    return node;
}

template <class Node>
void seal(Node* node) noexcept {
    if (node)
        node->seal();
}

Value& value_of(Value& element) noexcept {
    return element;
}
Value& value_of(detail::MapEntry& entry) noexcept {
    return entry.value;
}

auto& elements_of(detail::VectorNode& node) noexcept {
    return node.elements;
}
auto& elements_of(detail::MapNode& node) noexcept {
    return node;
}

/// Those that own something.
template <class Elements>
void move_containers(Elements& elements, std::vector<Value>& to) {
    for (auto& element : elements) {
        Value& value = value_of(element);
        if ((value.is_map() || value.type() == ValueType::vector) && !value.empty())
            to.push_back(std::move(value));
    }
}

}  // namespace

Binary::Binary(std::span<const std::byte> bytes)
    : content(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size())) {}

std::span<const std::byte> Binary::bytes() const noexcept {
    return std::as_bytes(std::span(content.view()));
}

Value::Value(bool value) noexcept : tag(ValueType::boolean) {
    content.boolean = value;
}

Value::Value(int value) noexcept : tag(ValueType::integer) {
    content.signed_integer = value;
}

Value::Value(long long value) noexcept : tag(ValueType::long_integer) {
    content.signed_integer = value;
}

Value::Value(unsigned long long value) noexcept : tag(ValueType::unsigned_long_integer) {
    content.unsigned_integer = value;
}

Value::Value(double value) noexcept : tag(ValueType::real) {
    content.real = value;
}

Value::Value(Text text) noexcept : tag(ValueType::string) {
    content.text = text.node.detach();
}

Value::Value(Binary bytes) noexcept : tag(ValueType::binary) {
    content.text = bytes.content.node.detach();
}

Value::Value(Timestamp time) noexcept : tag(ValueType::timestamp) {
    content.signed_integer = time.nanoseconds();
}

Value::Value(Timespan span) noexcept : tag(ValueType::timespan) {
    content.signed_integer = span.nanoseconds();
}

Value::Value(Event event) noexcept : tag(event.kind) {
    content.event = event.node.detach();
}

Value::Value(Alarm alarm) noexcept : Value(static_cast<Event&&>(alarm)) {}

Value::Value(Message message) noexcept : Value(static_cast<Event&&>(message)) {}

Value::Value(ValueType type) : tag(type) {
    switch (type) {
        case ValueType::boolean:
            content.boolean = false;
            break;
        case ValueType::real:
            content.real = 0;
            break;
        case ValueType::unsigned_long_integer:
            content.unsigned_integer = 0;
            break;
        case ValueType::string:
        case ValueType::binary:
            content.text = nullptr;
            break;
        case ValueType::vector:
            content.vector = nullptr;
            break;
        case ValueType::map:
        case ValueType::structure:
            content.map = nullptr;
            break;
        case ValueType::alarm:
        case ValueType::message:
        case ValueType::event:
            content.event = nullptr;
            break;
        default:
            break;
    }
}

void Value::share_content() {
    switch (tag) {
        case ValueType::string:
        case ValueType::binary:
            if (content.text)
                content.text->retain();
            break;
        case ValueType::vector:
            content.vector = share(content.vector);
            break;
        case ValueType::map:
        case ValueType::structure:
            content.map = share(content.map);
            break;
        default:
            content.event = detail::share(content.event).detach();
    }
}

void Value::seal_content() noexcept {
    switch (tag) {
        case ValueType::vector:
            seal(content.vector);
            break;
        case ValueType::map:
        case ValueType::structure:
            seal(content.map);
            break;
        default:
            seal(content.event);
    }
}

void Value::release_content() noexcept {
    switch (tag) {
        case ValueType::string:
        case ValueType::binary:
            if (content.text && content.text->release())
                detail::destroy(content.text);
            break;
        case ValueType::vector:
            if (content.vector && content.vector->release())
                destroy(content.vector);
            break;
        case ValueType::map:
        case ValueType::structure:
            if (content.map && content.map->release())
                destroy(content.map);
            break;
        default:
            if (content.event)
                intrusive_ptr_release(content.event);
    }
}

/// Containers within containers are taken out before their owners go, so that depth costs no
/// stack.
template <class Node>
void Value::destroy(Node* node) noexcept {
    try {
        std::vector<Value> nested;
        move_containers(elements_of(*node), nested);
        while (!nested.empty()) {
            Value last = std::move(nested.back());
            nested.pop_back();
            if (last.tag == ValueType::vector && last.content.vector->unique())
                move_containers(elements_of(*last.content.vector), nested);
            else if (last.is_map() && last.content.map->unique())
                move_containers(elements_of(*last.content.map), nested);
        }
    } catch (const std::bad_alloc&) {
        // What is left is destroyed recursively.
    }
    delete node;
}

detail::MapNode& Value::own_map() {
    if (tag == ValueType::none)
        *this = Value(ValueType::structure);
    if (!is_map())
        throw std::logic_error("value is not a map");
    return own(content.map);
}

detail::VectorNode& Value::own_vector() {
    if (tag == ValueType::none)
        *this = Value(ValueType::vector);
    if (tag != ValueType::vector)
        throw std::logic_error("value is not a vector");
    return own(content.vector);
}

/// The node for a change: created, or copied when it has other owners.
template <class Node>
Node& Value::own(Node*& node) {
    if (!node) {
        node = create(node);
    } else if (!node->unique()) {
        Node* shared = std::exchange(node, copy(*node));
        if (shared->release())
            destroy(shared);
    }
    return *node;
}

void Value::set_type(ValueType type) {
    const bool both_maps = is_map() && (type == ValueType::map || type == ValueType::structure);
    if (both_maps)
        tag = type;
    else if (tag != type)
        *this = Value(type);
}

bool Value::is_number() const noexcept {
    return is_one_of(ValueType::integer, ValueType::long_integer, ValueType::real,
                     ValueType::unsigned_long_integer);
}

std::size_t Value::size() const noexcept {
    switch (tag) {
        case ValueType::string:
        case ValueType::binary:
            return content.text ? content.text->size : 0;
        case ValueType::vector:
            return content.vector ? content.vector->elements.size() : 0;
        case ValueType::map:
        case ValueType::structure:
            return content.map ? content.map->size() : 0;
        default:
            return 0;
    }
}

bool Value::empty() const noexcept {
    if (is_event())
        return content.event == nullptr;
    return !isset() || (is_counted() && size() == 0);
}

void Value::clear() noexcept {
    *this = Value(tag);
}

}  // namespace ZrHmiSrv
