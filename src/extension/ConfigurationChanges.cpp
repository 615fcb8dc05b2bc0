/// Target systems that are added, changed or removed while the server runs.
#include <algorithm>

#include "extension/Deadline.h"
#include "extension/ZrHmiEventLogger.h"
#include "targetsystem/TargetSystemPlatformSpecific.h"

using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Text;

namespace ZrHmiEventLogger {

namespace {

constexpr std::string_view targetSystemsKey = "TARGET_SYSTEMS";

}  // namespace

void ZrHmiEventLogger::value_set(ResultPair& result, const Context&, const char* path) {
    result = guarded(ErrorValue::operation_failed, "", [&]() -> ResultPair {
        const auto names = splitPath(path ? path : "");
        if (names.size() != 2)
            return ErrorValue::success;
        return names[0] == targetSystemsKey ? setTargetSystem(path, names[1])
                                            : ErrorValue::unknown_command;
    });
}

ResultPair ZrHmiEventLogger::setTargetSystem(const char* path, std::string_view name) {
    const ConfigurationTurns::Turn turn(configurationTurns, std::string(name));
    if (stopping)
        return ErrorValue::operation_failed;
    const auto configured = readTargetSystem(Text(name), configuration.read(path));
    if (configured.fault.empty())
        return applyTargetSystem(configured);
    reportRefusal(configured.name, configured.fault);
    return ErrorValue::invalid_configuration;
}

ResultPair ZrHmiEventLogger::applyTargetSystem(const TargetSystemConfiguration& configured) {
    const std::int64_t eventLimit = configuration.eventLimit();
    const auto timeout = configuration.timeout();
    if (!timeout) {
        reportRefusal(configured.name, missingTimeout);
        return ErrorValue::invalid_configuration;
    }
    const auto running = targetSystems.find(configured.name.view());
    if (running && isSameAddress(running->configuredAddress(), configured.address) &&
        running->isEnabled() == configured.enabled)
        return ErrorValue::success;
    // What the former one is just doing ends within its own time-out.
    const Deadline deadline =
        deadlineAfter(running ? std::max(*timeout, running->timeout()) : *timeout);
    const Kept replacement = createTargetSystem(configured, *timeout, eventLimit);
    const bool prepared = replacement.keeper->awaitPrepared(deadline);
    if (!prepared)
        reportRefusal(configured.name, "Its event logger object does not answer.");
    if (!prepared || replacement.keeper->isRefused()) {
        targetSystems.retire({replacement}, deadline);
        return ErrorValue::operation_failed;
    }
    replaceTargetSystem(replacement, deadline);
    return ErrorValue::success;
}

/// The two are never connected at a time, unless the former one hangs longer than its time-out.
void ZrHmiEventLogger::replaceTargetSystem(const Kept& replacement, Deadline deadline) {
    const TargetSystem& target = *replacement.target;
    const Kept former = targetSystems.exchange(replacement);
    retireFormer(former, deadline);
    replacement.keeper->begin(target.isEnabled());
    if (target.isEnabled())
        replacement.target->firstAttempt().waitUntil(deadline);
}

/// The change has taken effect: what fails from here on is told, and fails nothing else. `former`
/// may be none.
void ZrHmiEventLogger::retireFormer(const Kept& former, Deadline deadline) noexcept {
    if (former)
        former.keeper->retire(deadline);
    reset.request();
    try {
        if (former)
            targetSystems.retire({former}, deadline);
    } catch (...) {
        reportFailure();
    }
}

void ZrHmiEventLogger::value_deleted(ResultPair& result, const Context&, const char* path) {
    result = guarded(ErrorValue::operation_failed, "", [&]() -> ResultPair {
        const auto names = splitPath(path ? path : "");
        if (names[0] != targetSystemsKey)
            return ErrorValue::unknown_command;
        if (names.size() < 2)
            return ErrorValue::success;
        const ConfigurationTurns::Turn turn(configurationTurns, std::string(names[1]));
        if (const Kept former = targetSystems.remove(names[1]))
            retireFormer(former, deadlineAfter(former.target->timeout()));
        return ErrorValue::success;
    });
}

/// Throws Refused when that fails, having told why.
ZrHmiEventLogger::Kept ZrHmiEventLogger::createTargetSystem(
    const TargetSystemConfiguration& configured, ZrHmiSrv::Timespan timeout,
    std::int64_t eventLimit) {
    try {
        auto target = TargetSystemPlatformSpecific<TargetSystem>::make(
            TargetSystemSettings{configured.name, configured.address, configured.enabled, timeout,
                                 eventLimit},
            context.domain(), localAddress, *this, stopping, sharedState);
        auto keeper = std::make_shared<Keeper>(target, [this] { reset.request(); });
        return {std::move(target), std::move(keeper)};
    } catch (...) {
        reportCurrentException(*this, configured.name);
        throw Refused();
    }
}

/// As far as is known. The router, which may hang, is asked by keepers only.
bool ZrHmiEventLogger::isSameAddress(const std::string& a, const std::string& b) const {
    const std::string local = localAddress.known();
    return a == b || resolveAddress(a, local) == resolveAddress(b, local);
}

}  // namespace ZrHmiEventLogger
