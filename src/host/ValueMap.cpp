#include <cassert>

#include "host/Value.h"
#include "host/ValueNodes.h"

namespace ZrHmiSrv {

namespace {

std::string_view view(const char* name) noexcept {
    return name ? name : "";
}

}  // namespace

Value& Value::operator[](const char* name) {
    detail::MapNode& own = own_map();
    detail::MapEntry* entry = own.find(view(name));
    if (entry == own.end())
        entry = &detail::MapNode::append(content.map, Text(name), Value());
    content.map->expose();
    return entry->value;
}

Value::Iterator Value::find(const char* name) {
    if (!map())
        return {};
    detail::MapNode& own = own_map();
    own.expose();
    return Iterator(own.find(view(name)));
}

Value::ConstIterator Value::find(const char* name) const {
    return map() ? ConstIterator(map()->find(view(name))) : ConstIterator();
}

const Value* Value::lookup(std::string_view name) const noexcept {
    if (!map())
        return nullptr;
    const detail::MapEntry* found = map()->find(name);
    return found == map()->end() ? nullptr : &found->value;
}

bool Value::insert(Text name, Value value) {
    if (lookup(name.view()))
        return false;
    append(name, std::move(value));
    return true;
}

void Value::append(const Text& name, Value&& value) {
    assert(!lookup(name.view()));
    if (!map() || !map()->unique())
        own_map();
    detail::MapNode::append(content.map, name, std::move(value));
    content.map->seal();
}

void Value::insert_or_update(const char* name, Value value) {
    insert_or_update(Text(name), std::move(value));
}

void Value::insert_or_update(Text name, Value value) {
    detail::MapNode& own = own_map();
    if (detail::MapEntry* entry = own.find(name.view()); entry != own.end()) {
        entry->value = std::move(value);
        return;
    }
    detail::MapNode::append(content.map, std::move(name), std::move(value));
    content.map->seal();
}

Value::Iterator Value::begin() {
    if (!map())
        return {};
    detail::MapNode& own = own_map();
    own.expose();
    return Iterator(own.begin());
}

Value::Iterator Value::end() {
    if (!map())
        return {};
    detail::MapNode& own = own_map();
    own.expose();
    return Iterator(own.end());
}

Value::ConstIterator Value::begin() const {
    return map() ? ConstIterator(map()->begin()) : ConstIterator();
}

Value::ConstIterator Value::end() const {
    return map() ? ConstIterator(map()->end()) : ConstIterator();
}

Value::Iterator Value::remove(Iterator position) {
    detail::MapNode& own = own_map();
    detail::MapEntry* next = own.remove(position.entry);
    own.expose();
    return Iterator(next);
}

}  // namespace ZrHmiSrv
