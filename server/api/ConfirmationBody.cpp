#include "server/api/ConfirmationBody.h"

#include <initializer_list>
#include <string_view>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include "server/json/IsoTime.h"
#include "server/json/ParseJson.h"

namespace hmi {

namespace json = boost::json;

namespace {

constexpr std::size_t maxEvents = 1000;
constexpr std::size_t maxCommentBytes = 2000;

json::value parsed(const std::string& body) {
    try {
        return body.empty() ? json::value() : parseJson(body);
    } catch (const JsonError& error) {
        throw RequestError(400, error.what());
    }
}

/// The object that `value` is; nothing else stands in it than these.
const json::object& objectOf(const json::value& value,
                             std::initializer_list<std::string_view> names) {
    if (!value.is_object())
        throw RequestError(400, "a confirmation is an object");
    for (const auto& field : value.get_object()) {
        bool isKnown = false;
        for (const std::string_view name : names)
            isKnown = isKnown || field.key() == name;
        if (!isKnown)
            throw RequestError(400, "a confirmation has no \"" + std::string(field.key()) + "\"");
    }
    return value.get_object();
}

/// Empty when there is none.
std::string textOf(const json::object& fields, std::string_view name) {
    const json::value* const field = fields.if_contains(name);
    if (!field || field->is_null())
        return {};
    if (!field->is_string())
        throw RequestError(400, std::string(name) + " is a text");
    return std::string(field->get_string());
}

std::string commentOf(const json::object& fields) {
    std::string comment = textOf(fields, "comment");
    if (comment.size() > maxCommentBytes)
        throw RequestError(400, "the comment is too long");
    return comment;
}

std::optional<ZrHmiSrv::Timestamp> timeRaisedOf(const json::object& fields) {
    const std::string text = textOf(fields, "timeRaised");
    if (text.empty())
        return std::nullopt;
    const auto time = parseIsoTime(text);
    if (!time)
        throw RequestError(400, "timeRaised is a time like 2024-05-01T06:07:08.1234567Z");
    return time;
}

EventId idOf(const json::object& fields) {
    const json::value* const id = fields.if_contains("id");
    if (id && id->is_int64())
        return {EventKind::alarm, id->get_int64()};
    const auto named = EventId::parse(textOf(fields, "id"));
    if (!named)
        throw RequestError(400, "each event has an \"id\"");
    return *named;
}

std::string nameOf(const Request& request) {
    return request.user.empty() ? request.peer : request.user;
}

}  // namespace

ConfirmationBody ConfirmationBody::ofOne(const Request& request, EventId id) {
    const json::value body = parsed(request.body);
    const json::value none = json::object();
    const json::object& fields = objectOf(body.is_null() ? none : body, {"timeRaised", "comment"});
    return {{{id, timeRaisedOf(fields)}}, {nameOf(request), commentOf(fields)}};
}

ConfirmationBody ConfirmationBody::ofMany(const Request& request) {
    const json::value body = parsed(request.body);
    const json::object& fields = objectOf(body, {"events", "comment"});
    const json::value* const events = fields.if_contains("events");
    if (!events || !events->is_array() || events->get_array().size() > maxEvents)
        throw RequestError(400, "events is an array of at most 1000");
    ConfirmationBody read{{}, {nameOf(request), commentOf(fields)}};
    for (const json::value& item : events->get_array()) {
        const json::object& event = objectOf(item, {"id", "timeRaised"});
        read.wishes.push_back({idOf(event), timeRaisedOf(event)});
    }
    return read;
}

}  // namespace hmi
