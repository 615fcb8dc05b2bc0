#include "simulator/plant/EventReader.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include <boost/endian/conversion.hpp>
#include <boost/uuid/string_generator.hpp>

namespace ZrSimulator {

namespace {

constexpr auto maxUlong = std::numeric_limits<ULONG>::max();

std::optional<boost::uuids::uuid> parseUuid(std::string_view text) {
    constexpr std::string_view form = "00000000-0000-0000-0000-000000000000";
    if (text.size() == form.size() + 2 && text.front() == '{' && text.back() == '}')
        text = text.substr(1, form.size());
    const bool hyphens =
        std::equal(text.begin(), text.end(), form.begin(), form.end(),
                   [](char given, char expected) { return (given == '-') == (expected == '-'); });
    if (!hyphens)
        return std::nullopt;
    try {
        return boost::uuids::string_generator()(text.begin(), text.end());
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

Argument readArgument(const JsonField& field) {
    const auto& value = field.raw();
    if (value.is_bool())
        return value.get_bool();
    if (value.is_string())
        return field.text();
    if (value.is_double())
        return value.get_double();
    if (value.is_uint64())
        return value.get_uint64();
    if (!value.is_int64())
        field.fail("not a number, a text, true or false");
    const auto number = value.get_int64();
    if (number == static_cast<std::int32_t>(number))
        return static_cast<std::int32_t>(number);
    return number;
}

EventSource readSource(const JsonField& field) {
    field.allowOnly({"id", "guid", "name"});
    EventSource source;
    if (const auto id = field.find("id"))
        source.id = static_cast<ULONG>(id->integer(0, maxUlong));
    if (const auto guid = field.find("guid"))
        source.guid = readGuid(*guid);
    if (const auto name = field.find("name"))
        source.name = name->text();
    return source;
}

const EventDefinition& findDefinition(const JsonField& field, const EventCatalog& catalog,
                                      const EventContent& content) {
    if (!catalog.findClass(content.eventClass))
        field["class"].fail("not a class of this runtime");
    const auto* definition = catalog.findEvent(content.eventClass, content.eventId);
    if (!definition)
        field["event"].fail("not an event of this class");
    return *definition;
}

}  // namespace

GUID readGuid(const JsonField& field) {
    return readGuidKey(field.text(), field);
}

GUID readGuidKey(std::string_view key, const JsonField& member) {
    const auto uuid = parseUuid(key);
    if (!uuid)
        member.fail("not a GUID");
    GUID guid{};
    guid.Data1 = boost::endian::load_big_u32(uuid->data);
    guid.Data2 = boost::endian::load_big_u16(uuid->data + 4);
    guid.Data3 = boost::endian::load_big_u16(uuid->data + 6);
    std::copy_n(uuid->data + 8, sizeof(guid.Data4), guid.Data4);
    return guid;
}

HRESULT readFailure(const JsonField& field) {
    const std::string text = field.text();
    std::uint32_t bits = 0;
    const char* const end = text.data() + text.size();
    if (text.size() != 10 || text.compare(0, 2, "0x") != 0 ||
        std::from_chars(text.data() + 2, end, bits, 16).ptr != end)
        field.fail("not an HRESULT: \"0x\" and eight hexadecimal digits");
    const auto hr = static_cast<HRESULT>(bits);
    if (SUCCEEDED(hr))
        field.fail("not a failure");
    return hr;
}

FileTime readTime(const JsonField& field) {
    const auto time = parseTime(field.text());
    if (!time)
        field.fail("not a time such as 2024-05-01T12:30:00.0000000Z");
    return *time;
}

FileTime readOptionalTime(const JsonField& parent, std::string_view key) {
    const auto field = parent.find(key);
    return field ? readTime(*field) : 0;
}

ULONG readNumberKey(std::string_view key, const JsonField& member, ULONG max) {
    ULONG number = 0;
    const char* const end = key.data() + key.size();
    const auto [stop, error] = std::from_chars(key.data(), end, number);
    if (error != std::errc() || stop != end || number > max)
        member.fail("its name is not a whole number from 0 to " + std::to_string(max));
    return number;
}

std::shared_ptr<const EventContent> readEvent(const JsonField& field, const EventCatalog& catalog,
                                              std::optional<EventKind> kind) {
    auto content = std::make_shared<EventContent>();
    content->eventClass = readGuid(field["class"]);
    content->eventId = static_cast<ULONG>(field["event"].integer(0, maxUlong));
    const auto& definition = findDefinition(field, catalog, *content);
    if (kind && *kind != definition.kind)
        field["event"].fail(*kind == EventKind::alarm ? "a message, not an alarm"
                                                      : "an alarm, not a message");
    content->kind = definition.kind;
    const auto severity = field.find("severity");
    content->severity =
        severity ? static_cast<ULONG>(severity->integer(0, maxSeverity)) : definition.severity;
    const auto confirm = field.find("confirm");
    content->requiresConfirmation =
        definition.kind == EventKind::alarm && (confirm ? confirm->flag() : definition.confirm);
    if (const auto source = field.find("source"))
        content->source = readSource(*source);
    if (const auto arguments = field.find("arguments"))
        arguments->forEachElement([&](const JsonField& argument) {
            content->arguments.push_back(readArgument(argument));
        });
    content->block = encode(content->arguments);
    if (const auto json = field.find("json"))
        content->json = json->text();
    return content;
}

}  // namespace ZrSimulator
