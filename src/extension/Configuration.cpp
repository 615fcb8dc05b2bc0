#include "extension/Configuration.h"

#include <algorithm>
#include <limits>

using ZrHmiSrv::Text;
using ZrHmiSrv::Timespan;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

std::optional<Timespan> toTimeout(const Value* value) {
    if (!value || value->type() != ValueType::timespan)
        return std::nullopt;
    return value->get_timespan();
}

const char* const missingTimeout = "\"TIMEOUT\" is missing or no time span.";

namespace {

std::string faultOf(const Value& entry) {
    if (!entry.is_map())
        return "The entry is no map.";
    const auto is = [&entry](const char* key, ValueType type) {
        const Value* value = entry.lookup(key);
        return value && value->type() == type;
    };
    if (!is("ADDRESS", ValueType::string))
        return "\"ADDRESS\" is missing or no string.";
    if (!is("ENABLED", ValueType::boolean))
        return "\"ENABLED\" is missing or no bool.";
    return {};
}

}  // namespace

TargetSystemConfiguration readTargetSystem(Text name, const Value& entry) {
    TargetSystemConfiguration target{std::move(name), {}, false, faultOf(entry)};
    const Value* address = entry.lookup("ADDRESS");
    const Value* enabled = entry.lookup("ENABLED");
    target.addressIsText = !address || address->type() == ValueType::string;
    if (address && enabled && target.addressIsText) {
        target.address = address->get_string();
        target.enabled = enabled->type() == ValueType::boolean && static_cast<bool>(*enabled);
    }
    return target;
}

std::vector<std::string_view> splitPath(std::string_view path) {
    constexpr std::string_view separator = "::";
    std::vector<std::string_view> names;
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find(separator, start), path.size());
        names.push_back(path.substr(start, end - start));
        start = end + separator.size();
    }
    return names;
}

Value Configuration::read(const char* path) const {
    const HostGate::Call call(gate);
    if (!call)
        return {};
    Value value;
    return host.read_configuration(value, context, path).succeeded() ? value : Value();
}

std::optional<Timespan> Configuration::timeout() const {
    const Value value = read("TIMEOUT");
    return toTimeout(&value);
}

std::int64_t Configuration::eventLimit() const {
    const auto limit = static_cast<double>(read("LIMIT_EVENT_COUNT"));
    // Written so that not-a-number fails the comparison.
    if (!(limit > 0))
        return 0;
    return static_cast<std::int64_t>(
        std::min<double>(limit, std::numeric_limits<std::int32_t>::max()));
}

bool Configuration::preloadTranslations() const {
    return static_cast<bool>(read("PRELOAD_TRANSLATIONS"));
}

std::vector<TargetSystemConfiguration> Configuration::targetSystems() const {
    std::vector<TargetSystemConfiguration> targets;
    const Value entries = read("TARGET_SYSTEMS");
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
        targets.push_back(readTargetSystem(Text(entry.name()), *entry));
    return targets;
}

}  // namespace ZrHmiEventLogger
