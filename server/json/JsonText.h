#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>

#include "host/Value.h"

namespace hmi {

/// JSON that is written to the end of a text, with nothing in between: for what is made by the
/// hundred thousand. It reads as what ValueJson makes.
void appendJson(std::string& to, std::string_view text);
void appendJson(std::string& to, ZrHmiSrv::Timestamp time);
void appendJson(std::string& to, const ZrHmiSrv::Value& value);
inline void appendJson(std::string& to, bool value) {
    to += value ? "true" : "false";
}
template <std::integral Number>
void appendJson(std::string& to, Number number) {
    char digits[24];
    to.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

/// An object, member by member.
class JsonObjectText {
public:
    explicit JsonObjectText(std::string& to) : to(to) { to += '{'; }

    /// Where the value of this member is to be written.
    std::string& member(std::string_view name) {
        to += isEmpty ? "" : ",";
        isEmpty = false;
        appendJson(to, name);
        to += ':';
        return to;
    }
    template <class T>
    void add(std::string_view name, const T& value) {
        appendJson(member(name), value);
    }
    void end() { to += '}'; }

private:
    std::string& to;
    bool isEmpty = true;
};

}  // namespace hmi
