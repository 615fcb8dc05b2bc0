#include "host/Listeners.h"

namespace ZrHmiSrv {

IZrHmiSrvExt::~IZrHmiSrvExt() = default;
IZrHmiSrvListener::~IZrHmiSrvListener() = default;

ListenerType IZrHmiSrvShutdownListener::type() const noexcept {
    return ListenerType::shutdown;
}

ListenerType IZrHmiSrvAlarmProviderListener::type() const noexcept {
    return ListenerType::alarm_provider;
}

ListenerType IZrHmiSrvEventLocalizationListener::type() const noexcept {
    return ListenerType::event_localization;
}

ListenerType IZrHmiSrvRequestListener::type() const noexcept {
    return ListenerType::request;
}

ListenerType IZrHmiSrvConfigListener::type() const noexcept {
    return ListenerType::configuration;
}

void ZrHmiSrvConfigListener::value_read(ResultPair& result, const Context&, const char*) {
    result = ErrorValue::success;
}

void ZrHmiSrvConfigListener::value_about_to_be_set(ResultPair& result, const Context&,
                                                   const char*) {
    result = ErrorValue::success;
}

void ZrHmiSrvConfigListener::value_about_to_be_deleted(ResultPair& result, const Context&,
                                                       const char*) {
    result = ErrorValue::success;
}

void ZrHmiSrvConfigListener::value_set(ResultPair& result, const Context&, const char*) {
    result = ErrorValue::success;
}

void ZrHmiSrvConfigListener::value_deleted(ResultPair& result, const Context&, const char*) {
    result = ErrorValue::success;
}

void ZrHmiSrvConfigListener::value_renamed(ResultPair& result, const Context&, const char*) {
    result = ErrorValue::success;
}

}  // namespace ZrHmiSrv
