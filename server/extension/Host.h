#pragma once

#include <functional>

#include "host/IZrHmiSrvExtHost.h"
#include "server/config/ConfigurationStore.h"
#include "server/events/EventBook.h"
#include "server/events/LogBook.h"
#include "server/extension/ListenerRegistry.h"
#include "server/extension/TroubleLog.h"
#include "server/metrics/Metrics.h"

namespace hmi {

/// What the extension's calls reach. All of it outlives the extension.
struct HostServices {
    EventBook& events;
    LogBook& log;
    const ConfigurationStore& configuration;
    ListenerRegistry& listeners;
    Metrics& metrics;
    std::function<void()> requestRefresh;  ///< any thread, waits for nothing
};

/// The server's side of the extension interface. A call only changes the books; none waits for
/// the extension, except for the end of a listener's calls when that listener is unregistered.
class Host final : public ZrHmiSrv::IZrHmiSrvExtHost {
public:
    explicit Host(HostServices services) : to(std::move(services)) {}

    ZrHmiSrv::ResultPair send_message(const ZrHmiSrv::Context& context, ZrHmiSrv::Message& message,
                                      bool publish) override;
    ZrHmiSrv::ResultPair register_listener_with_settings(const ZrHmiSrv::Context& context,
                                                         ZrHmiSrv::IZrHmiSrvListener* listener,
                                                         const ZrHmiSrv::Value& settings) override;
    ZrHmiSrv::ResultPair register_listener(const ZrHmiSrv::Context& context,
                                           ZrHmiSrv::IZrHmiSrvListener* listener) override;
    ZrHmiSrv::ResultPair unregister_listener(const ZrHmiSrv::Context& context,
                                             ZrHmiSrv::IZrHmiSrvListener* listener) override;
    ZrHmiSrv::ResultPair apply_alarm(const ZrHmiSrv::Context& context,
                                     ZrHmiSrv::AlarmOperation operation,
                                     ZrHmiSrv::Alarm alarm) override;
    ZrHmiSrv::ResultPair drop_event(const ZrHmiSrv::Context& context,
                                    ZrHmiSrv::Event event) override;
    ZrHmiSrv::ResultPair read_configuration(ZrHmiSrv::Value& result,
                                            const ZrHmiSrv::Context& context,
                                            const char* path) override;
    ZrHmiSrv::ResultPair reset_events(const ZrHmiSrv::Context& context) override;
    ZrHmiSrv::ResultPair announce(const ZrHmiSrv::Context& context, const char* product) override;

private:
    template <class Function>
    ZrHmiSrv::ResultPair serve(std::size_t slot, Function function) noexcept;
    void writeLog(ZrHmiSrv::Message message);

    HostServices to;
    TroubleLog trouble;
};

}  // namespace hmi
