#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "events/ILoggingFunctions.h"
#include "extension/Configuration.h"
#include "extension/ConfigurationTurns.h"
#include "extension/OwedReset.h"
#include "extension/TargetSystems.h"
#include "host/IZrHmiSrvExtHost.h"
#include "host/Threading.h"
#include "platform/Mutex.h"
#include "targetsystem/FnxHelper.h"
#include "targetsystem/HostGate.h"
#include "targetsystem/LocalAddress.h"

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
    using Deadline = TargetSystems::TimePoint;
    using Kept = TargetSystems::Kept;

    /// A target system cannot be created; why has been told.
    struct Refused {};

    /// Who speaks where no target system does.
    static const ZrHmiSrv::Text& productName();

    // Lifecycle.
    bool registerListeners();
    bool registerConfigurationListener();
    /// False once the extension stops: then nothing is registered any more.
    template <class Register>
    bool whileRunning(Register registerIt) EXCLUDES(registrationMutex);
    void createTargetSystems(ZrHmiSrv::Timespan timeout, Deadline deadline);
    /// Throws Refused when one cannot be prepared.
    void connectEnabledTargetSystems(Deadline deadline);
    void startTimer();
    void onTimer(ZrHmiSrv::TimerError error);
    void sendResetTemporaryEvents();
    ZrHmiSrv::ResultPair abandonInit(Deadline deadline);
    static Deadline longestDeadline(const std::vector<Kept>& targets);
    void unregister(ZrHmiSrv::IZrHmiSrvListener* listener);
    void stopThreading();

    // The way to the host.
    template <class Function>
    void callHost(Function function) {
        if (const HostGate::Call call(hostGate); call)
            function();
    }
    void reportRefusal(const ZrHmiSrv::Text& subject, const std::string& reason) noexcept;
    /// Reports the exception that is being handled, which is no target system's.
    void reportFailure() noexcept;

    // The host's way in.
    /// What `serve` answers. An exception is reported, and answered with the code and the text.
    template <class Serve>
    ZrHmiSrv::ResultPair guarded(ZrHmiSrv::ErrorValue failure, const char* text,
                                 Serve serve) noexcept {
        try {
            return serve();
        } catch (const Refused&) {
            return failure;
        } catch (...) {
            reportFailure();
            return withText(failure, text);
        }
    }
    /// Without the text when there is no memory for it.
    static ZrHmiSrv::ResultPair withText(ZrHmiSrv::ErrorValue code, const char* text) noexcept;

    // Configuration while running.
    Kept createTargetSystem(const TargetSystemConfiguration& configured,
                            ZrHmiSrv::Timespan timeout, std::int64_t eventLimit);
    bool isSameAddress(const std::string& a, const std::string& b) const;
    ZrHmiSrv::ResultPair setTargetSystem(const char* path, std::string_view name);
    ZrHmiSrv::ResultPair applyTargetSystem(const TargetSystemConfiguration& configured);
    void replaceTargetSystem(const Kept& replacement, Deadline deadline);
    void retireFormer(const Kept& former, Deadline deadline) noexcept;

    // Commands.
    void execute(ZrHmiSrv::Command& command);
    void reportDiagnostics(ZrHmiSrv::Value& diagnostics) const;
    void listEnabledTargetSystems(ZrHmiSrv::Value& names) const;

    ZrHmiSrv::Threading threading{2};
    TargetSystems targetSystems;
    LocalAddress localAddress;
    ConfigurationTurns configurationTurns;
    std::atomic<bool> stopping = false;
    std::atomic<std::int32_t> sharedState = 1;  ///< the next host alarm id
    ZrHmiSrv::IZrHmiSrvExtHost* const host;
    HostGate hostGate;
    ZrHmiSrv::Context context;  ///< constant once `init` has set it
    const Configuration configuration{*host, hostGate, context};
    OwedReset reset{[this] { sendResetTemporaryEvents(); }};
    Mutex registrationMutex;  ///< held while listeners are registered, unless the extension stops
};

}  // namespace ZrHmiEventLogger
