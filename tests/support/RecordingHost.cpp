#include "support/RecordingHost.h"

#include <algorithm>

using namespace ZrHmiSrv;

namespace bridge_test {

namespace {

std::string nameOf(const IZrHmiSrvListener& listener) {
    const char* const names[] = {"shutdown", "alarm provider", "event localization", "request",
                                 "configuration"};
    return names[static_cast<std::size_t>(listener.type()) - 1];
}

}  // namespace

Value RecordingHost::configurationFor(const std::vector<Target>& targets) {
    Value configuration(ValueType::structure);
    configuration.insert("TIMEOUT", Timespan::from_milliseconds(2000));
    configuration.insert("LIMIT_EVENT_COUNT", 100);
    configuration.insert("TARGET_SYSTEMS", Value(ValueType::map));
    for (const auto& [name, address, enabled] : targets) {
        configuration["TARGET_SYSTEMS"][name]["ADDRESS"] = address;
        configuration["TARGET_SYSTEMS"][name]["ENABLED"] = enabled;
    }
    return configuration;
}

ResultPair RecordingHost::note(const std::string& call) {
    calls.push_back(call);
    changed.notify_all();
    return {};
}

ResultPair RecordingHost::send_message(const Context&, Message& message, bool publish) {
    const std::string call = (publish ? "message " : "log ") + std::string(message.name().view());
    look([&] {
        (publish ? messages : log).push_back(message);
        note(call);
    });
    insideSlot(call);
    return {};
}

ResultPair RecordingHost::register_listener_with_settings(const Context&, Listener* listener,
                                                          const Value& settings) {
    std::lock_guard lock(mutex);
    listenerSettings = settings;
    listeners[listener->type()] = listener;
    return note("register with settings " + nameOf(*listener));
}

ResultPair RecordingHost::register_listener(const Context&, Listener* listener) {
    std::lock_guard lock(mutex);
    listeners[listener->type()] = listener;
    return note("register " + nameOf(*listener));
}

ResultPair RecordingHost::unregister_listener(const Context&, Listener* listener) {
    std::lock_guard lock(mutex);
    listeners.erase(listener->type());
    return note("unregister " + nameOf(*listener));
}

ResultPair RecordingHost::apply_alarm(const Context&, AlarmOperation operation, Alarm alarm) {
    const char* const verbs[] = {"raise ", "update ", "remove "};
    const std::string call = verbs[static_cast<int>(operation)] + std::to_string(alarm.id());
    look([&] {
        if (operation == AlarmOperation::raise || alarms.contains(alarm.id()))
            alarms[alarm.id()] = alarm;
        note(call);
    });
    insideSlot(call);
    return {};
}

ResultPair RecordingHost::drop_event(const Context&, Event event) {
    std::lock_guard lock(mutex);
    if (event.payload().type() == ValueType::alarm) {
        const int id = event.payload().get_alarm().id();
        alarms.erase(id);
        return note("drop " + std::to_string(id));
    }
    const auto found = std::find_if(messages.begin(), messages.end(), [&](const Message& message) {
        return Value(message) == event.payload();
    });
    if (found != messages.end())
        messages.erase(found);
    return note("drop message");
}

ResultPair RecordingHost::read_configuration(Value& result, const Context&, const char* path) {
    std::lock_guard lock(mutex);
    const Value* found = &configuration;
    for (std::string_view rest = path; found && !rest.empty();) {
        const std::size_t end = std::min(rest.find("::"), rest.size());
        found = found->lookup(std::string(rest.substr(0, end)).c_str());
        rest.remove_prefix(std::min(end + 2, rest.size()));
    }
    result = found ? *found : Value();
    return ErrorValue::success;
}

void RecordingHost::replace_events(const char* target, std::span<const Event> events) {
    std::lock_guard lock(mutex);
    const auto belongs = [target](const Value& parameters) {
        const Value* name = parameters.lookup("targetName");
        return name && name->get_text() == Text(target);
    };
    std::erase_if(alarms, [&](const auto& entry) { return belongs(entry.second.payload()); });
    std::erase_if(messages, [&](const Message& message) { return belongs(message.parameters()); });
    for (const Event& event : events) {
        const Alarm alarm = event.payload().get_alarm();
        if (alarm.isset())
            alarms[alarm.id()] = alarm;
        else
            messages.push_back(event.payload().get_message());
    }
    note(std::string("provided ") + target);
}

std::size_t RecordingHost::logged(std::string_view name) const {
    return static_cast<std::size_t>(std::count_if(
        log.begin(), log.end(), [&](const Message& entry) { return entry.name().view() == name; }));
}

Message RecordingHost::lastLogged(std::string_view name) const {
    const auto found = std::find_if(log.rbegin(), log.rend(), [&](const Message& entry) {
        return entry.name().view() == name;
    });
    return found == log.rend() ? Message() : *found;
}

}  // namespace bridge_test
