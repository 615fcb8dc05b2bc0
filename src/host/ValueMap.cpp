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
        entry = &own.append(Text(name), Value());
    own.expose();
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
    detail::MapNode& own = own_map();
    own.append(std::move(name), std::move(value));
    own.seal();
    return true;
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
    own.append(std::move(name), std::move(value));
    own.seal();
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
