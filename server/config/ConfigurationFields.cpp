#include "server/config/ConfigurationFields.h"

#include "server/json/IsoTime.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;

namespace {

using Fault = std::optional<std::string>;

Fault expect(bool (*is)(const json::value&), const json::object& object, std::string_view name,
             const std::string& prefix, const char* what) {
    const json::value* const value = object.if_contains(name);
    if (!value || is(*value))
        return std::nullopt;
    return prefix + std::string(name) + ": not a " + what;
}

bool isString(const json::value& value) {
    return value.is_string();
}
bool isBool(const json::value& value) {
    return value.is_bool();
}
bool isNumber(const json::value& value) {
    return value.is_number();
}

Fault entryFault(std::string_view name, const json::value& entry) {
    const std::string path = "TARGET_SYSTEMS." + std::string(name);
    if (name.empty() || name.find("::") != std::string_view::npos)
        return path + ": a name is not empty and has no \"::\" in it";
    const json::object* const fields = entry.if_object();
    if (!fields)
        return path + ": not an object";
    if (Fault fault = expect(isString, *fields, "ADDRESS", path + ".", "string"))
        return fault;
    return expect(isBool, *fields, "ENABLED", path + ".", "boolean");
}

}  // namespace

Fault findFieldFault(const json::value& configuration) {
    const json::object* const fields = configuration.if_object();
    if (!fields)
        return "not an object";
    if (Fault fault = expect(isNumber, *fields, "LIMIT_EVENT_COUNT", "", "number"))
        return fault;
    if (Fault fault = expect(isBool, *fields, "PRELOAD_TRANSLATIONS", "", "boolean"))
        return fault;
    const json::value* const targets = fields->if_contains("TARGET_SYSTEMS");
    if (!targets)
        return std::nullopt;
    if (!targets->is_object())
        return "TARGET_SYSTEMS: not an object";
    for (const json::key_value_pair& entry : targets->get_object()) {
        if (Fault fault = entryFault(entry.key(), entry.value()))
            return fault;
    }
    return std::nullopt;
}

std::optional<std::string> findTimeoutFault(const json::value& configuration) {
    const json::value* const timeout = configuration.get_object().if_contains("TIMEOUT");
    if (timeout && timeout->is_string()) {
        const auto span = parseIsoDuration(timeout->get_string());
        if (span && span->milliseconds() > 0)
            return std::nullopt;
    }
    return "TIMEOUT: not a duration such as \"PT5S\"";
}

ZrHmiSrv::Value configurationValue(const json::value& configuration) {
    if (configuration.get_object().empty())
        return {};
    ZrHmiSrv::Value value = fromJson(configuration);
    if (const json::value* const timeout = configuration.get_object().if_contains("TIMEOUT");
        timeout && timeout->is_string()) {
        if (const auto span = parseIsoDuration(timeout->get_string()))
            value.insert_or_update("TIMEOUT", *span);
    }
    return value;
}

}  // namespace hmi
