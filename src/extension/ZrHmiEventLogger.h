#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "events/ILoggingFunctions.h"
#include "extension/Configuration.h"
#include "host/IZrHmiSrvExtHost.h"
#include "host/Threading.h"
#include "platform/Mutex.h"
#include "targetsystem/FnxHelper.h"
#include "targetsystem/TargetSystem.h"

namespace ZrHmiEventLogger {

/// The one extension object: everything that the host calls arrives here and is handed on to the
/// target systems. The host creates it through `ext_interface` and deletes it. Any thread; no
/// exception leaves a function that the host calls.
class ZrHmiEventLogger final : public ILoggingFunctions,
                               public ZrHmiSrv::IZrHmiSrvExt,
                               public ZrHmiSrv::IZrHmiSrvShutdownListener,
                               public ZrHmiSrv::IZrHmiSrvAlarmProviderListener,
                               public ZrHmiSrv::IZrHmiSrvEventLocalizationListener,
                               public ZrHmiSrv::IZrHmiSrvRequestListener,
                               public ZrHmiSrv::ZrHmiSrvConfigListener,
                               public FnxHelper {
public:
    explicit ZrHmiEventLogger(ZrHmiSrv::IZrHmiSrvExtHost* host);
    ~ZrHmiEventLogger() override;
    ZrHmiEventLogger(const ZrHmiEventLogger&) = delete;
    ZrHmiEventLogger& operator=(const ZrHmiEventLogger&) = delete;

    // ILoggingFunctions: the target systems' way to the host.
    void logMessage(ZrHmiSrv::Message message) override;
    void reportCommunicationError(const ZrHmiSrv::Text& text) override;
    void reportCommunicationError(const ZrHmiSrv::Text& text,
                                  const std::exception& exception) override;
    void sendMessage(ZrHmiSrv::Message message) override;
    void raiseAlarm(ZrHmiSrv::Alarm alarm) override;
    void updateAlarm(ZrHmiSrv::Alarm alarm, bool removed) override;
    void forgetEvent(ZrHmiSrv::Event event) override;
    bool preloadTranslations() override;

    ZrHmiSrv::ResultPair init(const ZrHmiSrv::Context& context) override;
    ZrHmiSrv::String description() override { return {}; }
    ZrHmiSrv::ResultPair shutdown(const ZrHmiSrv::Context& context) override;

    ZrHmiSrv::ResultPair confirm_alarm(const ZrHmiSrv::Context& context,
                                       const ZrHmiSrv::Alarm& alarm) override;
    ZrHmiSrv::ResultPair provide_events(const ZrHmiSrv::Context& context,
                                        ZrHmiSrv::IEventReceiver& receiver) override;
    ZrHmiSrv::ErrorValue localize_event(ZrHmiSrv::Context context, const char* locale,
                                        ZrHmiSrv::ILocalizable& item,
                                        ZrHmiSrv::String& localized_text) override;
    ZrHmiSrv::ResultPair handle(const ZrHmiSrv::Context& context,
                                ZrHmiSrv::CommandGroup& commands) override;

    void value_set(ZrHmiSrv::ResultPair& result, const ZrHmiSrv::Context& context,
                   const char* path) override;
    void value_deleted(ZrHmiSrv::ResultPair& result, const ZrHmiSrv::Context& context,
                       const char* path) override;

private:
    using TargetSystemPointer = std::shared_ptr<TargetSystem>;
    using TargetSystemMap = std::map<std::string, TargetSystemPointer, std::less<>>;

    static const ZrHmiSrv::Text productName;

    // Lifecycle.
    void createTargetSystems(ZrHmiSrv::Timespan timeout);
    void connectEnabledTargetSystems();
    void connect(TargetSystem& target);
    void registerConfigurationListener();
    void startTimer();
    void onTimer(ZrHmiSrv::TimerError error);
    bool checkConnections();
    void sendResetTemporaryEvents();
    ZrHmiSrv::ResultPair abandonInit();
    void unregister(ZrHmiSrv::IZrHmiSrvListener* listener);
    void stopThreading();

    // Target systems.
    TargetSystemPointer createTargetSystem(const TargetSystemConfiguration& configured,
                                           ZrHmiSrv::Timespan timeout, std::int64_t eventLimit);
    std::string fullAddress(const TargetSystemConfiguration& configured);
    TargetSystemPointer findTargetSystem(std::string_view name) const;
    std::vector<TargetSystemPointer> copyTargetSystems() const;
    /// The former one of that name, to be retired by the caller.
    TargetSystemPointer exchangeTargetSystem(std::string_view name, TargetSystemPointer target);
    void clearTargetSystems();

    // Configuration while running.
    ZrHmiSrv::ResultPair applyTargetSystem(const TargetSystemConfiguration& configured);

    // Commands.
    void execute(ZrHmiSrv::Command& command);
    void reportDiagnostics(ZrHmiSrv::Value& diagnostics) const;
    void listEnabledTargetSystems(ZrHmiSrv::Value& names) const;

    ZrHmiSrv::Threading threading{2};
    mutable Mutex targetSystemsMutex;
    TargetSystemMap targetSystems GUARDED_BY(targetSystemsMutex);
    Mutex localAddressMutex;
    std::string localAddress GUARDED_BY(localAddressMutex);  ///< read on first use
    Mutex configMutex ACQUIRED_BEFORE(targetSystemsMutex);   ///< one configuration change at a time
    std::atomic<bool> stopping = false;
    std::atomic<std::int32_t> sharedState = 1;  ///< the next host alarm id
    ZrHmiSrv::IZrHmiSrvExtHost* const host;
    ZrHmiSrv::Context context;  ///< constant once `init` has set it
    const Configuration configuration{*host, context};
};

}  // namespace ZrHmiEventLogger
