#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/IZrHmiSrvExtHost.h"

namespace ZrHmiEventLogger {

/// One entry of "TARGET_SYSTEMS".
struct TargetSystemConfiguration {
    ZrHmiSrv::Text name;
    std::string address;
    bool enabled = false;
};

/// None when there is no value, or it is not a time span.
std::optional<ZrHmiSrv::Timespan> toTimeout(const ZrHmiSrv::Value* value);

/// An entry without an address and a flag, each of its type, keeps an empty address and is not
/// enabled.
TargetSystemConfiguration readTargetSystem(ZrHmiSrv::Text name, const ZrHmiSrv::Value& entry);
/// Whether an entry is a map with an address and a flag, each of its type.
bool isCompleteTargetSystem(const ZrHmiSrv::Value& entry);

/// The names of a configuration path, which "::" separates.
std::vector<std::string_view> splitPath(std::string_view path);

/// The extension's configuration, which the host keeps: every call reads it anew. Any thread.
class Configuration {
public:
    Configuration(ZrHmiSrv::IZrHmiSrvExtHost& host, const ZrHmiSrv::Context& context)
        : host(host), context(context) {}

    /// The value of a path; without a value when the path is not set.
    ZrHmiSrv::Value read(const char* path) const;
    std::optional<ZrHmiSrv::Timespan> timeout() const;
    /// 0 to the largest 32-bit number; not a number counts as 0.
    std::int64_t eventLimit() const;
    bool preloadTranslations() const;
    /// In configuration order.
    std::vector<TargetSystemConfiguration> targetSystems() const;

private:
    ZrHmiSrv::IZrHmiSrvExtHost& host;
    const ZrHmiSrv::Context& context;
};

}  // namespace ZrHmiEventLogger
