#include <limits>
#include <utility>

#include "host/EventNodes.h"
#include "host/Value.h"

namespace ZrHmiSrv {

namespace {

template <class To, class From>
To saturate(From value) noexcept {
    if (std::cmp_less(value, std::numeric_limits<To>::min()))
        return std::numeric_limits<To>::min();
    if (std::cmp_greater(value, std::numeric_limits<To>::max()))
        return std::numeric_limits<To>::max();
    return static_cast<To>(value);
}

/// The limits of 64-bit integers are no doubles: their neighbours outside are compared with.
template <class To>
To saturate(double value) noexcept {
    constexpr double lowest = static_cast<double>(std::numeric_limits<To>::min());
    constexpr double beyond = 2.0 * static_cast<double>(std::numeric_limits<To>::max() / 2 + 1);
    if (value != value)
        return 0;
    if (value <= lowest)
        return std::numeric_limits<To>::min();
    if (value >= beyond)
        return std::numeric_limits<To>::max();
    return static_cast<To>(value);
}

}  // namespace

template <class To>
To Value::to_integer() const noexcept {
    switch (tag) {
        case ValueType::integer:
        case ValueType::long_integer:
            return saturate<To>(content.signed_integer);
        case ValueType::unsigned_long_integer:
            return saturate<To>(content.unsigned_integer);
        case ValueType::real:
            return saturate<To>(content.real);
        default:
            return 0;
    }
}

Value::operator bool() const noexcept {
    return tag == ValueType::boolean && content.boolean;
}

Value::operator int() const noexcept {
    return to_integer<int>();
}

Value::operator long long() const noexcept {
    return to_integer<long long>();
}

Value::operator unsigned long long() const noexcept {
    return to_integer<unsigned long long>();
}

Value::operator double() const noexcept {
    switch (tag) {
        case ValueType::integer:
        case ValueType::long_integer:
            return static_cast<double>(content.signed_integer);
        case ValueType::unsigned_long_integer:
            return static_cast<double>(content.unsigned_integer);
        case ValueType::real:
            return content.real;
        default:
            return 0;
    }
}

Value::operator const char*() const noexcept {
    return tag == ValueType::string && content.text ? content.text->characters() : "";
}

Timespan Value::get_timespan() const noexcept {
    return tag == ValueType::timespan ? Timespan(content.signed_integer) : Timespan();
}

Timestamp Value::get_timestamp() const noexcept {
    return tag == ValueType::timestamp ? Timestamp(content.signed_integer) : Timestamp();
}

Text Value::get_text() const noexcept {
    return tag == ValueType::string ? Text(Text::Node(content.text)) : Text();
}

Binary Value::get_binary() const noexcept {
    Binary result;
    if (tag == ValueType::binary)
        result.content = Text(Text::Node(content.text));
    return result;
}

template <class Handle>
Handle Value::get(ValueType type) const {
    Handle result;
    if (tag == type)
        static_cast<Event&>(result).node = detail::share(content.event);
    return result;
}

Alarm Value::get_alarm() const {
    return get<Alarm>(ValueType::alarm);
}

Message Value::get_message() const {
    return get<Message>(ValueType::message);
}

Event Value::get_event() const {
    return is_event() ? Event(tag, detail::share(content.event)) : Event();
}

Map<Value> Value::get_map() const {
    return Map<Value>(is_map() ? *this : Value());
}

Vector<Value> Value::get_vector() const {
    return Vector<Value>(tag == ValueType::vector ? *this : Value());
}

}  // namespace ZrHmiSrv
