#include "server/extension/ExtensionCalls.h"

#include <exception>

#include "server/Log.h"

namespace hmi {

using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;

namespace {

/// An extension must not throw; one that does must not end the server either.
template <class Function>
std::optional<ResultPair> guarded(Function function) {
    try {
        return function();
    } catch (const std::exception& exception) {
        log(LogLevel::error, std::string("the extension threw: ") + exception.what());
    } catch (...) {
        log(LogLevel::error, "the extension threw an exception of unknown type");
    }
    return ResultPair(ErrorValue::operation_failed, "an exception left the extension");
}

}  // namespace

std::optional<ResultPair> ExtensionCalls::confirm(const ZrHmiSrv::Alarm& alarm) {
    const auto listener = listeners.call<ZrHmiSrv::IZrHmiSrvAlarmProviderListener>();
    if (!listener)
        return std::nullopt;
    return guarded([&] { return listener->confirm_alarm(context, alarm); });
}

std::optional<ResultPair> ExtensionCalls::provideEvents(ZrHmiSrv::IEventReceiver& receiver) {
    const auto listener = listeners.call<ZrHmiSrv::IZrHmiSrvAlarmProviderListener>();
    if (!listener)
        return std::nullopt;
    return guarded([&] { return listener->provide_events(context, receiver); });
}

std::optional<EventTexts> ExtensionCalls::localize(const EventRecord& event,
                                                   const std::string& locale) {
    const auto listener = listeners.call<ZrHmiSrv::IZrHmiSrvEventLocalizationListener>();
    if (!listener)
        return std::nullopt;
    LocalizedEvent item(event);
    ZrHmiSrv::String text;
    const ZrHmiSrv::Context client(context.domain(), ZrHmiSrv::Session(locale.c_str()));
    const auto answer = guarded(
        [&] { return ResultPair(listener->localize_event(client, locale.c_str(), item, text)); });
    if (!answer->succeeded())
        return EventTexts{answer->result(), {}, {}};
    EventTexts texts{answer->result(), text.name(), ZrHmiSrv::Value(ZrHmiSrv::ValueType::map)};
    for (const char* name : localizedParameters) {
        if (const ZrHmiSrv::Value* const value = item.parameters().lookup(name))
            texts.parameters.insert(name, *value);
    }
    return texts;
}

std::optional<ResultPair> ExtensionCalls::handle(ZrHmiSrv::CommandGroup& commands) {
    const auto listener = listeners.call<ZrHmiSrv::IZrHmiSrvRequestListener>();
    if (!listener)
        return std::nullopt;
    return guarded([&] { return listener->handle(context, commands); });
}

ZrHmiSrv::Value ExtensionCalls::diagnostics() {
    ZrHmiSrv::CommandGroup commands({ZrHmiSrv::Command("Diagnostics", "Diagnostics")});
    const auto answer = handle(commands);
    const ZrHmiSrv::Command& command = *commands.begin_vector();
    if (!answer || !answer->succeeded() || command.extension_result() != 0)
        return {};
    const ZrHmiSrv::Value* const targets = command.read_value().lookup("TARGET_SYSTEMS");
    return targets ? *targets : ZrHmiSrv::Value();
}

std::optional<ResultPair> ExtensionCalls::configurationSet(const std::string& path) {
    const auto listener = listeners.call<ZrHmiSrv::IZrHmiSrvConfigListener>();
    if (!listener)
        return std::nullopt;
    return guarded([&] {
        ResultPair result;
        listener->value_set(result, context, path.c_str());
        return result;
    });
}

std::optional<ResultPair> ExtensionCalls::configurationDeleted(const std::string& path) {
    const auto listener = listeners.call<ZrHmiSrv::IZrHmiSrvConfigListener>();
    if (!listener)
        return std::nullopt;
    return guarded([&] {
        ResultPair result;
        listener->value_deleted(result, context, path.c_str());
        return result;
    });
}

ZrHmiSrv::Value ExtensionCalls::configurationSettings() {
    const auto listener = listeners.call<ZrHmiSrv::IZrHmiSrvConfigListener>();
    return listener ? listener.settings() : ZrHmiSrv::Value();
}

bool ExtensionCalls::shutdown() {
    const auto listener = listeners.call<ZrHmiSrv::IZrHmiSrvShutdownListener>();
    if (!listener)
        return false;
    const auto answer = guarded([&] { return listener->shutdown(context); });
    if (!answer->succeeded())
        log(LogLevel::warning, "the extension's shutdown answered " +
                                   std::to_string(static_cast<unsigned>(answer->result())));
    return true;
}

}  // namespace hmi
