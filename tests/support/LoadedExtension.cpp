#include "support/LoadedExtension.h"

using namespace ZrHmiSrv;

namespace bridge_test {

LoadedExtension::LoadedExtension(RecordingHost& host) : host(host) {
    IZrHmiSrvExt* created = nullptr;
    double version = 0;
    ext_interface(&host, &created, &version);
    extension.reset(created);
}

LoadedExtension::~LoadedExtension() {
    if (extension)
        shutdown();
}

ResultPair LoadedExtension::init() { return extension->init(context); }

ResultPair LoadedExtension::shutdown() {
    IZrHmiSrvListener* found = nullptr;
    host.look([&] {
        const auto position = host.listeners.find(ListenerType::shutdown);
        found = position == host.listeners.end() ? nullptr : position->second;
    });
    return found ? dynamic_cast<IZrHmiSrvShutdownListener&>(*found).shutdown(context)
                 : ResultPair();
}

void LoadedExtension::refresh() {
    listener<IZrHmiSrvAlarmProviderListener>(ListenerType::alarm_provider)
        .provide_events(context, host);
}

ResultPair LoadedExtension::confirm(const Alarm& alarm) {
    return listener<IZrHmiSrvAlarmProviderListener>(ListenerType::alarm_provider)
        .confirm_alarm(context, alarm);
}

std::vector<Command> LoadedExtension::command(std::vector<Command> commands) {
    CommandGroup group(std::move(commands));
    listener<IZrHmiSrvRequestListener>(ListenerType::request).handle(context, group);
    return {group.begin_vector(), group.end_vector()};
}

Command LoadedExtension::command(const char* name, Value input) {
    return command({Command(name, name, std::move(input))}).front();
}

Value LoadedExtension::diagnostics(const char* target) {
    const Value all = command("Diagnostics").read_value();
    const Value* entries = all.lookup("TARGET_SYSTEMS");
    const Value* entry = entries ? entries->lookup(target) : nullptr;
    return entry ? *entry : Value();
}

ResultPair LoadedExtension::setConfiguration(const char* path) {
    ResultPair result;
    listener<IZrHmiSrvConfigListener>(ListenerType::configuration).value_set(result, context, path);
    return result;
}

ResultPair LoadedExtension::deleteConfiguration(const char* path) {
    ResultPair result;
    listener<IZrHmiSrvConfigListener>(ListenerType::configuration)
        .value_deleted(result, context, path);
    return result;
}

}  // namespace bridge_test
