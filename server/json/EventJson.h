#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <boost/json/object.hpp>

#include "server/events/Change.h"
#include "server/events/RecordIndex.h"
#include "server/events/LocalizedEvent.h"

namespace hmi {

/// How much of an event: all, or without what no list shows (JSON attributes, arguments and other
/// binary parameters, causes and details).
enum class Extent : std::uint8_t { whole, brief };

/// An event as clients see it, with the texts of a localization that succeeded, written to the end
/// of a text.
void appendJson(std::string& to, const EventRecord& event, Extent extent = Extent::whole,
                const EventTexts* texts = nullptr);
void appendJson(std::string& to, const LogEntry& entry);

/// The same in documents.
boost::json::object toJson(const EventRecord& event);
void addTexts(boost::json::object& event, const EventTexts& texts, Extent extent = Extent::whole);
boost::json::object toJson(const Attention& attention);

/// What the stream calls a change of this type.
std::string_view nameOf(ChangeType type);
/// A change as one line of the stream.
std::string toLine(const Change& change, Extent extent = Extent::whole);

}  // namespace hmi
