#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/IZrHmiSrvExtHost.h"
#include "targetsystem/HostGate.h"

namespace ZrHmiEventLogger {

/// One entry of "TARGET_SYSTEMS".
struct TargetSystemConfiguration {
    ZrHmiSrv::Text name;
    std::string address;
    bool enabled = false;
    std::string fault;            ///< what is wrong with the entry; empty when nothing is
    bool addressIsText = true;

    /// An address of another type must not be taken for none, which means this device.
    bool isUsable() const { return addressIsText; }
};

/// Why a "TIMEOUT" is refused.
extern const char* const missingTimeout;

/// None when there is no value, or it is not a time span.
std::optional<ZrHmiSrv::Timespan> toTimeout(const ZrHmiSrv::Value* value);

/// An entry without an address or a flag keeps an empty address and is not enabled. The fault says
/// what is missing or of another type.
TargetSystemConfiguration readTargetSystem(ZrHmiSrv::Text name, const ZrHmiSrv::Value& entry);

/// The names of a configuration path, which "::" separates.
std::vector<std::string_view> splitPath(std::string_view path);

/// The extension's configuration, which the host keeps: every call reads it anew. Any thread.
class Configuration {
public:
    Configuration(ZrHmiSrv::IZrHmiSrvExtHost& host, HostGate& gate,
                  const ZrHmiSrv::Context& context)
        : host(host), gate(gate), context(context) {}

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
    HostGate& gate;
    const ZrHmiSrv::Context& context;
};

}  // namespace ZrHmiEventLogger
