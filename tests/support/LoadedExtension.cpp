#include "support/LoadedExtension.h"

using namespace ZrHmiSrv;

namespace bridge_test {

LoadedExtension::LoadedExtension(RecordingHost& host) : host(host) {
    IZrHmiSrvExt* created = nullptr;
    double version = 0;
    ext_interface(&host, &created, &version);
    extension.reset(created);
}

ResultPair LoadedExtension::shutdown() {
    auto* found = listener<IZrHmiSrvShutdownListener>(ListenerType::shutdown);
    return found ? found->shutdown(context) : ResultPair();
}

ResultPair LoadedExtension::confirm(const Alarm& alarm) {
    return listener<IZrHmiSrvAlarmProviderListener>(ListenerType::alarm_provider)
        ->confirm_alarm(context, alarm);
}

std::vector<Command> LoadedExtension::command(std::vector<Command> commands) {
    CommandGroup group(std::move(commands));
    listener<IZrHmiSrvRequestListener>(ListenerType::request)->handle(context, group);
    return {group.begin_vector(), group.end_vector()};
}

Command LoadedExtension::command(const char* name, Value input) {
    return command({Command(name, name, std::move(input))}).front();
}

std::string LoadedExtension::diagnostics(const char* target, const char* entry) {
    const Value targets = command("Diagnostics").read_value().get_map().get("TARGET_SYSTEMS");
    return targets.get_map().get(target).get_map().get(entry).get_string();
}

}  // namespace bridge_test
