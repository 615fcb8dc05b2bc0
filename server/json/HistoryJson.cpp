#include "server/json/HistoryJson.h"

#include <boost/json/serialize.hpp>

#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;

namespace {

std::string quoted(std::string_view text) {
    return json::serialize(toJson(text));
}

}  // namespace

std::string toText(const HistoryEntry& entry) {
    std::string text = "{\"seq\":" + std::to_string(entry.sequence) +
                       ",\"at\":" + json::serialize(toJson(entry.at)) +
                       ",\"station\":" + quoted(entry.station) +
                       ",\"change\":" + quoted(nameOf(entry.change));
    if (entry.occurrence)
        text += ",\"occurrence\":" + std::to_string(*entry.occurrence);
    text += ",\"event\":" + entry.event;
    if (entry.text)
        text += ",\"text\":" + quoted(*entry.text);
    if (!entry.by.empty())
        text += ",\"by\":" + quoted(entry.by);
    if (!entry.comment.empty())
        text += ",\"comment\":" + quoted(entry.comment);
    return text + "}";
}

json::object toJson(const HistoryStatus& status, json::storage_ptr storage) {
    json::object object(12, storage);
    object.emplace("state", HistoryStatus::stateNames[static_cast<std::size_t>(status.state)]);
    object.emplace("since", toJson(status.since, storage));
    if (!status.error.empty())
        object.emplace("error", toJson(std::string_view(status.error), storage));
    object.emplace("queued", status.queued);
    object.emplace("written", status.written);
    object.emplace("lost", status.lost);
    object.emplace("removed", status.removed);
    object.emplace("textsPending", status.textsPending);
    object.emplace("textsMissed", status.textsMissed);
    object.emplace("lastSeq", status.sequence);
    object.emplace("bytes", status.bytes);
    return object;
}

}  // namespace hmi
