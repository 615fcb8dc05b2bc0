#pragma once

#include <optional>
#include <string>

#include "server/events/LocalizedEvent.h"
#include "server/extension/ListenerRegistry.h"

namespace hmi {

/// The calls that the server makes into the extension's listeners. Any thread, several at a time;
/// they take as long as the extension takes, so never on the I/O thread and with no lock held.
/// Nothing is answered when the extension has no listener for a call.
class ExtensionCalls {
public:
    ExtensionCalls(ListenerRegistry& listeners, ZrHmiSrv::Context context)
        : listeners(listeners), context(std::move(context)) {}

    std::optional<ZrHmiSrv::ResultPair> confirm(const ZrHmiSrv::Alarm& alarm);
    std::optional<ZrHmiSrv::ResultPair> provideEvents(ZrHmiSrv::IEventReceiver& receiver);
    std::optional<EventTexts> localize(const EventRecord& event, const std::string& locale);
    std::optional<ZrHmiSrv::ResultPair> handle(ZrHmiSrv::CommandGroup& commands);
    /// What the extension tells of each target system; unset when it tells nothing. Waits for no
    /// logger.
    ZrHmiSrv::Value diagnostics();
    std::optional<ZrHmiSrv::ResultPair> configurationSet(const std::string& path);
    std::optional<ZrHmiSrv::ResultPair> configurationDeleted(const std::string& path);
    /// The settings with which the configuration listener was registered.
    ZrHmiSrv::Value configurationSettings();
    /// False when the extension does not want to know.
    bool shutdown();

private:
    ListenerRegistry& listeners;
    const ZrHmiSrv::Context context;
};

}  // namespace hmi
