#include <stdexcept>

#include "host/Value.h"
#include "host/ValueNodes.h"

namespace ZrHmiSrv {

Value::VectorIterator Value::begin_vector() {
    if (!vector())
        return nullptr;
    detail::VectorNode& own = own_vector();
    own.expose();
    return own.elements.data();
}

Value::VectorIterator Value::end_vector() {
    return begin_vector() + size_of_vector();
}

Value::ConstVectorIterator Value::begin_vector() const {
    return vector() ? vector()->elements.data() : nullptr;
}

Value::ConstVectorIterator Value::end_vector() const {
    return begin_vector() + size_of_vector();
}

Value::VectorIterator Value::find(std::size_t index) {
    return begin_vector() + std::min(index, size_of_vector());
}

Value& Value::operator[](std::size_t index) {
    if (index >= size_of_vector())
        throw std::out_of_range("index of a vector value");
    return begin_vector()[index];
}

const Value& Value::operator[](std::size_t index) const {
    if (index >= size_of_vector())
        throw std::out_of_range("index of a vector value");
    return begin_vector()[index];
}

Value::VectorIterator Value::insert(VectorIterator position, Value value) {
    const std::ptrdiff_t index = position ? position - std::as_const(*this).begin_vector() : 0;
    detail::VectorNode& own = own_vector();
    const auto inserted = own.elements.insert(own.elements.begin() + index, std::move(value));
    own.expose();
    return &*inserted;
}

void Value::reserve(std::size_t count) {
    if (is_map() && !content.map)
        content.map = detail::MapNode::create(count);
    else if (is_map())
        detail::MapNode::reserve((own_map(), content.map), count);
    else if (isset())
        own_vector().elements.reserve(count);
}

void Value::resize(std::size_t count) {
    detail::VectorNode& own = own_vector();
    own.elements.resize(count);
    own.seal();
}

Value& Value::operator<<(Value value) {
    detail::VectorNode& own = own_vector();
    own.elements.push_back(std::move(value));
    own.seal();
    return *this;
}

}  // namespace ZrHmiSrv
