#pragma once

#include "simulator/plant/EventContent.h"
#include "simulator/plant/JsonField.h"

namespace ZrSimulator {

// Reading members of a plant file and of actions; each throws FormatError.

/// With or without braces.
GUID readGuid(const JsonField& field);
GUID readGuidKey(std::string_view key, const JsonField& member);
/// An HRESULT that says failure: "0x" and eight hexadecimal digits.
HRESULT readFailure(const JsonField& field);
FileTime readTime(const JsonField& field);
/// 0 for an absent member.
FileTime readOptionalTime(const JsonField& parent, std::string_view key);
/// A number that is the name of a member, from 0 to `max`.
ULONG readNumberKey(std::string_view key, const JsonField& member, ULONG max);

/// "class", "event", "severity", "confirm", "source", "arguments" and "json" of an event, which
/// has to be defined and to be of this kind. What is absent is taken from the definition.
std::shared_ptr<const EventContent> readEvent(const JsonField& field, const EventCatalog& catalog,
                                              std::optional<EventKind> kind);

inline constexpr ULONG maxSeverity = 4;

}  // namespace ZrSimulator
