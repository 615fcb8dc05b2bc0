#include "extension/ZrHmiEventLogger.h"

#include <limits>

#include <boost/thread/thread.hpp>

using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
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

const ZrHmiSrv::Text ZrHmiEventLogger::productName("Corvane EventLogger");

ZrHmiEventLogger::ZrHmiEventLogger(ZrHmiSrv::IZrHmiSrvExtHost* host) : host(host) {}

ZrHmiEventLogger::~ZrHmiEventLogger() {
    stopping = true;
    // A worker may still be inside a target system: nothing it uses may go before it.
    while (!threading.stop(std::numeric_limits<int>::max())) {
    }
    clearTargetSystems();
}

ResultPair ZrHmiEventLogger::init(const Context& initContext) {
    try {
        context = initContext;
        host->announce(context, productName.c_str());
        const Value whole = configuration.read("");
        if (!whole.isset()) {
            stopping = true;
            stopThreading();
            return ErrorValue::invalid_configuration;
        }
        const auto timeout = toTimeout(whole.lookup("TIMEOUT"));
        if (!timeout)
            return ErrorValue::initialization_failed;

        using namespace ZrHmiSrv;
        host->register_listener(context, static_cast<IZrHmiSrvAlarmProviderListener*>(this));
        host->register_listener(context, static_cast<IZrHmiSrvEventLocalizationListener*>(this));
        host->register_listener(context, static_cast<IZrHmiSrvShutdownListener*>(this));
        host->register_listener(context, static_cast<IZrHmiSrvRequestListener*>(this));

        createTargetSystems(*timeout);
        connectEnabledTargetSystems();
        startTimer();
        registerConfigurationListener();
        return ErrorValue::success;
    } catch (...) {
        reportCurrentException(*this, productName);
        return abandonInit();
    }
}

ResultPair ZrHmiEventLogger::abandonInit() {
    stopThreading();
    clearTargetSystems();
    return ErrorValue::initialization_failed;
}

void ZrHmiEventLogger::createTargetSystems(Timespan timeout) {
    const auto configuredTargets = configuration.targetSystems();
    const std::int64_t eventLimit = configuration.eventLimit();
    for (const TargetSystemConfiguration& configured : configuredTargets)
        exchangeTargetSystem(configured.name.view(),
                             createTargetSystem(configured, timeout, eventLimit));
}

void ZrHmiEventLogger::connectEnabledTargetSystems() {
    // Side by side: a target that does not answer costs its time-out once, not for each behind it.
    boost::thread_group connecting;
    for (const TargetSystemPointer& target : copyTargetSystems()) {
        if (!target->isEnabled())
            continue;
        try {
            connecting.create_thread([this, target] { connect(*target); });
        } catch (const boost::thread_resource_error&) {
            connect(*target);
        }
    }
    connecting.join_all();
}

void ZrHmiEventLogger::connect(TargetSystem& target) {
    try {
        ImportResultPtr importResult;
        target.Connect(importResult);
    } catch (...) {
        reportCurrentException(*this, target.name());
    }
}

void ZrHmiEventLogger::registerConfigurationListener() {
    Value paths(ValueType::vector);
    paths << "TARGET_SYSTEMS::*";
    Value settings(ValueType::structure);
    settings.insert("flags", configurationListenerFlags);
    settings.insert("paths", std::move(paths));
    Value all(ValueType::vector);
    all << std::move(settings);
    host->register_listener_with_settings(
        context, static_cast<ZrHmiSrv::ZrHmiSrvConfigListener*>(this), all);
}

void ZrHmiEventLogger::startTimer() {
    threading.schedule(timerPeriodMilliseconds, context,
                       [this](TimerError error, const Context&) { onTimer(error); });
}

void ZrHmiEventLogger::onTimer(TimerError error) {
    if (error == TimerError::aborted)
        return;
    try {
        if (checkConnections())
            sendResetTemporaryEvents();
    } catch (...) {
        reportCurrentException(*this, productName);
    }
    startTimer();
}

bool ZrHmiEventLogger::checkConnections() {
    bool changed = false;
    for (const TargetSystemPointer& target : copyTargetSystems()) {
        if (stopping)
            break;
        try {
            ImportResultPtr importResult;
            changed |= target->CheckConnection(importResult);
        } catch (...) {
            reportCurrentException(*this, target->name());
        }
    }
    return changed;
}

ResultPair ZrHmiEventLogger::shutdown(const Context&) {
    using namespace ZrHmiSrv;
    stopping = true;
    unregister(static_cast<IZrHmiSrvAlarmProviderListener*>(this));
    unregister(static_cast<IZrHmiSrvEventLocalizationListener*>(this));
    unregister(static_cast<IZrHmiSrvShutdownListener*>(this));
    unregister(static_cast<IZrHmiSrvRequestListener*>(this));
    unregister(static_cast<ZrHmiSrv::ZrHmiSrvConfigListener*>(this));
    stopThreading();
    clearTargetSystems();
    return ErrorValue::success;
}

void ZrHmiEventLogger::unregister(ZrHmiSrv::IZrHmiSrvListener* listener) {
    try {
        host->unregister_listener(context, listener);
    } catch (...) {
        // The rest of the shutdown does not depend on it.
        reportCurrentException(*this, productName);
    }
}

void ZrHmiEventLogger::stopThreading() { threading.stop(stopTimeoutMilliseconds); }

}  // namespace ZrHmiEventLogger
