#include "extension/ZrHmiEventLogger.h"

#include <algorithm>
#include <limits>

#include "extension/Deadline.h"

using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Text;
using ZrHmiSrv::Timespan;
using ZrHmiSrv::TimerError;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

namespace {

constexpr std::size_t timerPeriodMilliseconds = 500;
constexpr std::size_t stopTimeoutMilliseconds = 5000;
/// Which changes the configuration listener is told of: the host's own numbering.
constexpr int configurationListenerFlags = 48;

}  // namespace

const Text& ZrHmiEventLogger::productName() {
    static const Text name = Text("Corvane EventLogger");
    return name;
}

ZrHmiEventLogger::ZrHmiEventLogger(ZrHmiSrv::IZrHmiSrvExtHost* host) : host(host) {}

ZrHmiEventLogger::~ZrHmiEventLogger() {
    stopping = true;
    // Workers and keepers may still be inside a target system: nothing they use may go before.
    while (!threading.stop(std::numeric_limits<int>::max())) {
    }
    targetSystems.join();
}

ResultPair ZrHmiEventLogger::init(const Context& initContext) {
    Deadline deadline = std::chrono::steady_clock::now();
    try {
        context = initContext;
        callHost([&] { host->announce(context, productName().c_str()); });
        const Value whole = configuration.read("");
        if (!whole.isset()) {
            stopping = true;
            stopThreading();
            reportRefusal(productName(), "There is no configuration.");
            return ErrorValue::invalid_configuration;
        }
        const auto timeout = toTimeout(whole.lookup("TIMEOUT"));
        if (!timeout) {
            reportRefusal("TIMEOUT", missingTimeout);
            return ErrorValue::initialization_failed;
        }
        deadline = deadlineAfter(*timeout);
        if (registerListeners()) {
            createTargetSystems(*timeout, deadline);
            connectEnabledTargetSystems(deadline);
            if (registerConfigurationListener())
                return ErrorValue::success;
        }
    } catch (const Refused&) {
        // It has been told which target system that was.
    } catch (...) {
        reportFailure();
    }
    return abandonInit(deadline);
}

ResultPair ZrHmiEventLogger::withText(ErrorValue code, const char* text) noexcept {
    try {
        return {code, text};
    } catch (...) {
        return code;
    }
}

ResultPair ZrHmiEventLogger::abandonInit(Deadline deadline) {
    stopping = true;
    try {
        stopThreading();
        targetSystems.retire(targetSystems.close(), deadline);
    } catch (...) {
        reportFailure();
    }
    hostGate.close(deadline);
    return ErrorValue::initialization_failed;
}

template <class Register>
bool ZrHmiEventLogger::whileRunning(Register registerIt) {
    Lock lock(registrationMutex);
    if (stopping)
        return false;
    registerIt();
    return true;
}

bool ZrHmiEventLogger::registerListeners() {
    using namespace ZrHmiSrv;
    return whileRunning([this] {
        host->register_listener(context, static_cast<IZrHmiSrvAlarmProviderListener*>(this));
        host->register_listener(context, static_cast<IZrHmiSrvEventLocalizationListener*>(this));
        host->register_listener(context, static_cast<IZrHmiSrvShutdownListener*>(this));
        host->register_listener(context, static_cast<IZrHmiSrvRequestListener*>(this));
    });
}

bool ZrHmiEventLogger::registerConfigurationListener() {
    Value paths(ValueType::vector);
    paths << "TARGET_SYSTEMS::*";
    Value settings(ValueType::structure);
    settings.insert("flags", configurationListenerFlags);
    settings.insert("paths", std::move(paths));
    Value all(ValueType::vector);
    all << std::move(settings);
    return whileRunning([&] {
        host->register_listener_with_settings(
            context, static_cast<ZrHmiSrv::ZrHmiSrvConfigListener*>(this), all);
    });
}

void ZrHmiEventLogger::createTargetSystems(Timespan timeout, Deadline deadline) {
    const auto configuredTargets = configuration.targetSystems();
    const std::int64_t eventLimit = configuration.eventLimit();
    for (const TargetSystemConfiguration& configured : configuredTargets) {
        if (!configured.fault.empty())
            reportRefusal(configured.name, configured.fault);
        if (!configured.isUsable())
            continue;
        if (stopping)
            throw Refused();
        const Kept created = createTargetSystem(configured, timeout, eventLimit);
        if (targetSystems.exchange(created)) {
            // Closed meanwhile.
            targetSystems.retire({created}, deadline);
            throw Refused();
        }
    }
}

void ZrHmiEventLogger::connectEnabledTargetSystems(Deadline deadline) {
    const auto all = targetSystems.copy();
    for (const Kept& kept : all)
        kept.keeper->begin(kept.target->isEnabled());
    // Nor does a target that hangs now keep the others from being checked.
    startTimer();
    // Of one whose library hangs it is not known yet: its keeper goes on by itself.
    for (const Kept& kept : all)
        if (kept.keeper->awaitPrepared(deadline) && kept.keeper->isRefused())
            throw Refused();
    for (const Kept& kept : all)
        if (kept.target->isEnabled())
            kept.target->firstAttempt().waitUntil(deadline);
}

void ZrHmiEventLogger::startTimer() {
    threading.schedule_periodic(timerPeriodMilliseconds, context,
                                [this](TimerError error, const Context&) { onTimer(error); });
}

/// Waits for no target system: each has a keeper that does.
void ZrHmiEventLogger::onTimer(TimerError error) {
    if (error == TimerError::aborted)
        return;
    try {
        for (const Kept& kept : targetSystems.copy())
            kept.keeper->wake();
    } catch (...) {
        // The next tick wakes them.
        reportFailure();
    }
    // Last: the host may take its time.
    reset.settle();
}

ResultPair ZrHmiEventLogger::shutdown(const Context&) {
    using namespace ZrHmiSrv;
    {
        Lock lock(registrationMutex);
        stopping = true;
    }
    std::vector<Kept> leaving;
    Deadline deadline = deadlineAfter(Timespan());
    try {
        leaving = targetSystems.close();
        deadline = longestDeadline(leaving);
        // At once: what hangs has as long to end as the calls of the listeners have.
        for (const Kept& kept : leaving)
            kept.keeper->retire(deadline);
    } catch (...) {
        reportFailure();
    }
    unregister(static_cast<IZrHmiSrvAlarmProviderListener*>(this));
    unregister(static_cast<IZrHmiSrvEventLocalizationListener*>(this));
    unregister(static_cast<IZrHmiSrvShutdownListener*>(this));
    unregister(static_cast<IZrHmiSrvRequestListener*>(this));
    unregister(static_cast<ZrHmiSrv::ZrHmiSrvConfigListener*>(this));
    try {
        stopThreading();
        targetSystems.retire(std::move(leaving), deadline);
    } catch (...) {
        reportFailure();
    }
    hostGate.close(deadlineAfter(Timespan::from_milliseconds(stopTimeoutMilliseconds)));
    return ErrorValue::success;
}

/// After the longest of their time-outs.
ZrHmiEventLogger::Deadline ZrHmiEventLogger::longestDeadline(const std::vector<Kept>& targets) {
    Timespan longest;
    for (const Kept& kept : targets)
        longest = std::max(longest, kept.target->timeout());
    return deadlineAfter(longest);
}

void ZrHmiEventLogger::unregister(ZrHmiSrv::IZrHmiSrvListener* listener) {
    try {
        callHost([&] { host->unregister_listener(context, listener); });
    } catch (...) {
        // The rest of the shutdown does not depend on it.
        reportFailure();
    }
}

void ZrHmiEventLogger::stopThreading() { threading.stop(stopTimeoutMilliseconds); }

}  // namespace ZrHmiEventLogger
