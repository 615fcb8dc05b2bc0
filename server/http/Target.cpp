#include "server/http/Target.h"

#include <algorithm>
#include <charconv>

#include <boost/url/encode.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/rfc/pchars.hpp>
#include <boost/url/url_view.hpp>

#include "server/http/Response.h"
#include "server/json/Utf8.h"

namespace hmi {

namespace urls = boost::urls;

namespace {

/// Clients send texts of other languages, brackets and the like as they are, though they should not.
/// What is encoded already stays as it is.
std::string encodeRest(std::string_view text) {
    std::string encoded;
    for (;;) {
        const std::size_t percent = std::min(text.find('%'), text.size());
        encoded += urls::encode(text.substr(0, percent), urls::pchars + '/' + '?');
        if (percent == text.size())
            return encoded;
        encoded += '%';
        text.remove_prefix(percent + 1);
    }
}

std::string decode(urls::pct_string_view text, bool plusIsSpace) {
    urls::encoding_opts options;
    options.space_as_plus = plusIsSpace;
    std::string decoded = text.decode(options);
    if (!isUtf8(decoded) || decoded.find('\0') != std::string::npos)
        throw RequestError(400, "the address is not UTF-8 text");
    return decoded;
}

/// Where the path of an absolute address begins; 0 when the text is none.
std::size_t lengthOfAuthority(std::string_view text) {
    const auto colon = text.find("://");
    if (text.starts_with('/') || colon == std::string_view::npos)
        return 0;
    return std::min(text.find_first_of("/?", colon + 3), text.size());
}

urls::url_view parseText(std::string_view text) {
    const auto parsed =
        text.starts_with('/') ? urls::parse_origin_form(text) : urls::parse_absolute_uri(text);
    if (!parsed)
        throw RequestError(400, "the address is malformed");
    return *parsed;
}

}  // namespace

void Query::add(std::string name, std::string value) {
    constexpr std::size_t most = 32;
    if (parameters.size() >= most)
        throw RequestError(400, "there are more than 32 parameters");
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

void Query::allowOnly(Names names, Names further) const {
    const auto isIn = [](Names all, const std::string& name) {
        return std::find(all.begin(), all.end(), name) != all.end();
    };
    for (const auto& parameter : parameters) {
        if (!isIn(names, parameter.first) && !isIn(further, parameter.first))
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

bool Query::flag(std::string_view name) const {
    const std::uint64_t number = this->number(name, 0);
    if (number > 1)
        throw RequestError(400, std::string(name) + " is 0 or 1");
    return number == 1;
}

Target Target::parse(std::string_view text) {
    const std::string encoded = encodeRest(text);
    const urls::url_view url = parseText(encoded);
    const std::string scheme = toLowerAscii(std::string_view(url.scheme()));
    if (!text.starts_with('/') && scheme != "http" && scheme != "https")
        throw RequestError(400, "the address is of another protocol");
    Target target;
    target.authority = url.encoded_authority();
    for (const urls::pct_string_view name : url.encoded_segments())
        target.path.push_back(decode(name, false));
    for (const auto& parameter : url.encoded_params()) {
        if (!parameter.key.empty() || parameter.has_value)
            target.query.add(decode(parameter.key, true), decode(parameter.value, true));
    }
    return target;
}

std::string_view Target::pathOf(std::string_view text) {
    text.remove_prefix(lengthOfAuthority(text));
    return text.substr(0, text.find('?'));
}

}  // namespace hmi
