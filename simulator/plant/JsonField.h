#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <boost/json/value.hpp>

namespace ZrSimulator {

/// A document does not say what it has to; the text begins with the path of the field.
struct FormatError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Throws FormatError with the line of the first syntax error.
boost::json::value parseJson(std::string_view text);

/// A value of a document that is being read, which knows its path. It refers to the field that it
/// was taken from and to the document, so both have to outlive it. Every reading member throws
/// FormatError when the value is not what it asks for.
class JsonField {
public:
    explicit JsonField(const boost::json::value& document) : value(document) {}

    /// A member that has to be there.
    JsonField operator[](std::string_view key) const;
    /// A member that may be absent, which null means as well.
    std::optional<JsonField> find(std::string_view key) const;
    /// Refuses members of other names.
    void allowOnly(std::initializer_list<std::string_view> keys) const;
    /// Calls `visit(key, field)` for each member of an object.
    template <class Visit>
    void forEachMember(Visit&& visit) const {
        for (const auto& member : object())
            visit(std::string_view(member.key()), JsonField(*this, member.key(), member.value()));
    }

    bool isArray() const { return value.is_array(); }
    /// Calls `visit(field)` for each element of an array.
    template <class Visit>
    void forEachElement(Visit&& visit) const {
        std::size_t index = 0;
        for (const auto& element : array())
            visit(JsonField(*this, index++, element));
    }

    bool flag() const;
    std::string text() const;
    std::int64_t integer(std::int64_t min, std::int64_t max) const;
    double number(double min, double max) const;
    const boost::json::value& raw() const { return value; }

    [[noreturn]] void fail(std::string_view problem) const;

private:
    JsonField(const JsonField& parent, std::string_view key, const boost::json::value& value)
        : value(value), parent(&parent), key(key) {}
    JsonField(const JsonField& parent, std::size_t index, const boost::json::value& value)
        : value(value), parent(&parent), index(index) {}

    const boost::json::object& object() const;
    const boost::json::array& array() const;
    std::string path() const;

    const boost::json::value& value;
    const JsonField* parent = nullptr;
    std::string_view key;  ///< of a member of an object; empty for an element
    std::size_t index = 0;
};

}  // namespace ZrSimulator
