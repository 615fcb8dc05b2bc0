#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "host/Export.h"
#include "host/Text.h"
#include "host/Time.h"

namespace ZrHmiSrv {

class Alarm;
class Event;
class Message;
class Value;

namespace detail {
struct EventNode;
struct MapEntry;
class MapNode;
struct VectorNode;
}  // namespace detail

/// The type tag of a value. The numbers are the host's.
enum class ValueType : std::uint8_t {
    none = 0,  ///< no value: an unset configuration path
    boolean = 1,
    integer = 2,
    long_integer = 3,
    real = 4,
    vector = 5,
    map = 6,
    structure = 7,  ///< also a map; the kind of results and of listener settings
    string = 8,
    binary = 9,
    timestamp = 10,
    timespan = 11,
    alarm = 12,
    message = 13,
    event = 14,
    unsigned_long_integer = 15,
};

/// Bytes without a meaning of their own.
class ZRHMISRV_API Binary {
public:
    Binary() noexcept = default;
    explicit Binary(std::span<const std::byte> bytes);
    /// The bytes of a text, which is shared.
    explicit Binary(Text content) noexcept : content(std::move(content)) {}

    std::span<const std::byte> bytes() const noexcept;
    std::size_t size() const noexcept { return bytes().size(); }

private:
    friend class Value;
    Text content;
};

/// Walks a map in insertion order. Invalid after any change of the map's set of names.
template <class V>
class MapIterator {
public:
    MapIterator() noexcept = default;
    const char* name() const noexcept;
    V& operator*() const noexcept;
    V* operator->() const noexcept { return &**this; }
    MapIterator& operator++() noexcept;
    friend bool operator==(MapIterator, MapIterator) noexcept = default;

private:
    friend class Value;
    explicit MapIterator(detail::MapEntry* entry) noexcept : entry(entry) {}
    detail::MapEntry* entry = nullptr;
};

/// Read-only view of a map value that keeps its content alive.
template <class V>
class Map;
/// Read-only view of a vector value that keeps its content alive.
template <class V>
class Vector;

/// A dynamically typed value of 16 bytes. Copies share their content until one of them is
/// changed, so a copy costs at most one counter however much it holds. Maps keep the order in
/// which names were inserted. A conversion of a value of the wrong type yields the type's zero;
/// numbers convert among each other, truncating towards zero and saturating.
///
/// A reference or iterator from a non-const access stays private to the value that gave it, also
/// when the value is copied afterwards. It is valid until that value, or one that contains it, is
/// moved, assigned to or destroyed, or names or elements are added to it or removed from it.
/// Distinct values may be used on distinct threads even while they share content.
class ZRHMISRV_API Value {
public:
    using Iterator = MapIterator<Value>;
    using ConstIterator = MapIterator<const Value>;
    using VectorIterator = Value*;
    using ConstVectorIterator = const Value*;

    Value() noexcept {}
    Value(bool value) noexcept;
    Value(int value) noexcept;
    Value(unsigned value) noexcept : Value(static_cast<long long>(value)) {}
    Value(long value) noexcept : Value(static_cast<long long>(value)) {}
    Value(long long value) noexcept;
    Value(unsigned long value) noexcept : Value(static_cast<unsigned long long>(value)) {}
    Value(unsigned long long value) noexcept;
    Value(double value) noexcept;
    Value(const char* text) : Value(Text(text)) {}
    Value(std::string_view text) : Value(Text(text)) {}
    Value(const std::string& text) : Value(Text(text)) {}
    Value(Text text) noexcept;
    Value(Binary bytes) noexcept;
    Value(Timestamp time) noexcept;
    Value(Timespan span) noexcept;
    Value(Alarm alarm) noexcept;
    Value(Message message) noexcept;
    Value(Event event) noexcept;
    Value(const void*) = delete;
    explicit Value(ValueType type);  ///< the zero or the empty container of a type

    Value(const Value& other) : content(other.content), tag(other.tag) {
        if (is_counted())
            share_content();
    }
    Value(Value&& other) noexcept : content(other.content), tag(other.tag) {
        other.tag = ValueType::none;
        if (is_shareable())
            seal_content();
    }
    Value& operator=(const Value& other) { return *this = Value(other); }
    Value& operator=(Value&& other) noexcept {
        Value taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~Value() {
        if (is_counted())
            release_content();
    }

    template <class T>
    void set(T&& value) {
        *this = Value(std::forward<T>(value));
    }
    ValueType type() const noexcept { return tag; }
    /// Becomes the zero or the empty container of `type`; keeps its content if it has that type
    /// or changes between the two kinds of map.
    void set_type(ValueType type);
    bool isset() const noexcept { return tag != ValueType::none; }
    /// No value, no elements, no bytes, or an event that is not set; other scalars are never empty.
    bool empty() const noexcept;
    /// Becomes the zero or the empty container of its type.
    void clear() noexcept;
    /// Elements of a map or vector, bytes of a string or binary, otherwise 0.
    std::size_t size() const noexcept;
    bool is_map() const noexcept { return tag == ValueType::map || tag == ValueType::structure; }
    bool is_number() const noexcept;

    // Maps. Changing one on a value that is none makes it a structure; on any other type it throws
    // std::logic_error. Reading one from a value that is no map finds nothing.
    Value& operator[](const char* name);
    Iterator find(const char* name);
    ConstIterator find(const char* name) const;
    /// The value of a name, or null.
    const Value* lookup(std::string_view name) const noexcept;
    /// False, and nothing is changed, when the name exists.
    bool insert(const char* name, Value value) { return insert(Text(name), std::move(value)); }
    bool insert(Text name, Value value);
    /// The same where the caller knows that the name is new.
    void append(const Text& name, Value&& value);
    void insert_or_update(const char* name, Value value);
    void insert_or_update(Text name, Value value);
    Iterator begin();
    Iterator end();
    ConstIterator begin() const;
    ConstIterator end() const;
    /// The position behind the removed one.
    Iterator remove(Iterator position);

    // Vectors, likewise: changing one on a value that is none makes it a vector. `find` answers
    // the end for an index that does not exist, the operator throws std::out_of_range.
    VectorIterator begin_vector();
    VectorIterator end_vector();
    ConstVectorIterator begin_vector() const;
    ConstVectorIterator end_vector() const;
    VectorIterator find(std::size_t index);
    Value& operator[](std::size_t index);
    const Value& operator[](std::size_t index) const;
    VectorIterator insert(VectorIterator position, Value value);
    void reserve(std::size_t count);  ///< of a map or a vector
    void resize(std::size_t count);
    Value& operator<<(Value value);

    explicit operator bool() const noexcept;
    explicit operator int() const noexcept;
    explicit operator long long() const noexcept;
    explicit operator unsigned long long() const noexcept;
    explicit operator double() const noexcept;
    /// Never null; valid as long as this value is not changed.
    explicit operator const char*() const noexcept;
    Timespan get_timespan() const noexcept;
    Timestamp get_timestamp() const noexcept;
    std::string get_string() const { return std::string(get_text().view()); }
    Text get_text() const noexcept;
    Binary get_binary() const noexcept;
    Alarm get_alarm() const;
    Message get_message() const;
    Event get_event() const;
    Map<Value> get_map() const;
    Vector<Value> get_vector() const;

    /// Deep; the order of names counts, the two kinds of map do not differ.
    friend ZRHMISRV_API bool operator==(const Value& a, const Value& b) noexcept;

private:
    /// Which member is active follows from the tag. The nodes are counted and may be null: empty
    /// containers own nothing.
    union Content {
        long long signed_integer = 0;  ///< integers, and nanoseconds of times
        unsigned long long unsigned_integer;
        double real;
        bool boolean;
        const detail::TextNode* text;  ///< strings and binaries
        detail::VectorNode* vector;
        detail::MapNode* map;
        detail::EventNode* event;
    };

    template <class... Types>
    bool is_one_of(Types... types) const noexcept {
        return (... || (tag == types));
    }
    bool is_event() const noexcept {
        return is_one_of(ValueType::alarm, ValueType::message, ValueType::event);
    }
    bool is_shareable() const noexcept {
        return is_one_of(ValueType::vector, ValueType::map, ValueType::structure) || is_event();
    }
    bool is_counted() const noexcept {
        return is_one_of(ValueType::string, ValueType::binary) || is_shareable();
    }
    void swap(Value& other) noexcept {
        std::swap(content, other.content);
        std::swap(tag, other.tag);
    }
    void share_content();
    void seal_content() noexcept;
    void release_content() noexcept;
    template <class Node>
    static void destroy(Node* node) noexcept;
    template <class Node>
    static Node& own(Node*& node);
    detail::MapNode* map() const noexcept { return is_map() ? content.map : nullptr; }
    detail::MapNode& own_map();
    detail::VectorNode* vector() const noexcept {
        return tag == ValueType::vector ? content.vector : nullptr;
    }
    detail::VectorNode& own_vector();
    std::string_view characters() const noexcept {
        return content.text ? content.text->view() : std::string_view();
    }
    std::size_t size_of_vector() const noexcept { return vector() ? size() : 0; }
    template <class To>
    To to_integer() const noexcept;
    template <class Handle>
    Handle get(ValueType type) const;

    Content content;
    ValueType tag = ValueType::none;
};

namespace detail {

struct MapEntry {
    MapEntry(Text name, Value&& value) noexcept
        : name(std::move(name)), value(std::move(value)) {}

    Text name;
    Value value;
};

}  // namespace detail

template <class V>
const char* MapIterator<V>::name() const noexcept {
    return entry->name.c_str();
}

template <class V>
V& MapIterator<V>::operator*() const noexcept {
    return entry->value;
}

template <class V>
MapIterator<V>& MapIterator<V>::operator++() noexcept {
    ++entry;
    return *this;
}

template <class V>
class Map {
public:
    explicit Map(V content) noexcept : content(std::move(content)) {}
    std::size_t size() const noexcept { return content.size(); }
    /// The unset value when there is none of that name.
    V get(const char* name) const {
        const V* found = content.lookup(name);
        return found ? *found : V();
    }
    typename V::ConstIterator begin() const { return content.begin(); }
    typename V::ConstIterator end() const { return content.end(); }

private:
    const V content;
};

template <class V>
class Vector {
public:
    explicit Vector(V content) noexcept : content(std::move(content)) {}
    std::size_t size() const noexcept { return content.size(); }
    /// The unset value when there is none at that index.
    V get(std::size_t index) const { return index < size() ? content[index] : V(); }
    typename V::ConstVectorIterator begin() const { return content.begin_vector(); }
    typename V::ConstVectorIterator end() const { return content.end_vector(); }

private:
    const V content;
};

/// A host string that is handed out to be filled.
class String {
public:
    const Text& name() const noexcept { return text; }
    void set_name(Text value) noexcept { text = std::move(value); }

private:
    Text text;
};

}  // namespace ZrHmiSrv
