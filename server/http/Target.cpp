#include "server/http/Target.h"

#include <algorithm>
#include <charconv>

#include "server/http/Response.h"
#include "server/json/Utf8.h"

namespace hmi {

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char small = static_cast<char>(c | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

std::string decode(std::string_view text, bool plusIsSpace) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '+' && plusIsSpace) {
            decoded += ' ';
        } else if (text[i] == '%') {
            const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
            const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
            if (high < 0 || low < 0)
                throw RequestError(400, "malformed percent-encoding");
            decoded += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    if (!isUtf8(decoded) || decoded.find('\0') != std::string::npos)
        throw RequestError(400, "the address is not UTF-8 text");
    return decoded;
}

/// Calls back for each part; an empty text has none.
template <class Function>
void forEachPart(std::string_view text, char separator, Function function) {
    while (!text.empty()) {
        const auto end = std::min(text.find(separator), text.size());
        function(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

}  // namespace

void Query::add(std::string name, std::string value) {
    for (const auto& parameter : parameters) {
        if (parameter.first == name)
            throw RequestError(400, "parameter " + name + " is given twice");
    }
    parameters.emplace_back(std::move(name), std::move(value));
}

const std::string* Query::find(std::string_view name) const {
    for (const auto& parameter : parameters) {
        if (parameter.first == name && !parameter.second.empty())
            return &parameter.second;
    }
    return nullptr;
}

void Query::allowOnly(std::initializer_list<std::string_view> names) const {
    for (const auto& parameter : parameters) {
        if (std::find(names.begin(), names.end(), parameter.first) == names.end())
            throw RequestError(400, "unknown parameter " + parameter.first);
    }
}

std::uint64_t Query::number(std::string_view name, std::uint64_t otherwise) const {
    const std::string* const text = find(name);
    if (!text)
        return otherwise;
    std::uint64_t number = 0;
    const char* const end = text->data() + text->size();
    const auto read = std::from_chars(text->data(), end, number);
    if (read.ec != std::errc() || read.ptr != end)
        throw RequestError(400, std::string(name) + " is not a whole number from 0 on");
    return number;
}

Target Target::parse(std::string_view text) {
    if (!text.starts_with('/'))
        throw RequestError(400, "the address does not start with a slash");
    Target target;
    const auto mark = std::min(text.find('?'), text.size());
    forEachPart(text.substr(1, mark - 1), '/',
                [&](std::string_view part) { target.path.push_back(decode(part, false)); });
    if (mark > 1 && text[mark - 1] == '/')
        target.path.emplace_back();
    forEachPart(text.substr(std::min(mark + 1, text.size())), '&', [&](std::string_view part) {
        const auto equals = std::min(part.find('='), part.size());
        target.query.add(decode(part.substr(0, equals), true),
                         decode(part.substr(std::min(equals + 1, part.size())), true));
    });
    return target;
}

}  // namespace hmi
