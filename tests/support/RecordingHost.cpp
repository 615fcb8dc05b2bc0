#include "support/RecordingHost.h"

#include <algorithm>

using namespace ZrHmiSrv;

namespace bridge_test {

namespace {

const char* nameOf(ListenerType type) {
    switch (type) {
        case ListenerType::shutdown:
            return "shutdown";
        case ListenerType::alarm_provider:
            return "alarm provider";
        case ListenerType::event_localization:
            return "event localization";
        case ListenerType::request:
            return "request";
        case ListenerType::configuration:
            return "configuration";
    }
    return "?";
}

}  // namespace

Value RecordingHost::configurationWithLimit(double limit) {
    Value configuration(ValueType::structure);
    configuration.insert("TIMEOUT", Timespan::from_milliseconds(2000));
    configuration.insert("LIMIT_EVENT_COUNT", limit);
    configuration.insert("TARGET_SYSTEMS", Value(ValueType::map));
    return configuration;
}

void RecordingHost::addTarget(Value& configuration, const char* name, const char* address,
                              bool enabled) {
    Value entry(ValueType::structure);
    entry.insert("ADDRESS", address);
    entry.insert("ENABLED", enabled);
    configuration["TARGET_SYSTEMS"].insert_or_update(name, entry);
}

void RecordingHost::note(std::string call) {
    calls.push_back(std::move(call));
    changed.notify_all();
}

ResultPair RecordingHost::send_message(const Context&, Message& message, bool publish) {
    std::lock_guard lock(mutex);
    (publish ? messages : log).push_back(message);
    note((publish ? "message " : "log ") + std::string(message.name().view()));
    return {};
}

ResultPair RecordingHost::register_listener_with_settings(const Context&,
                                                          IZrHmiSrvListener* listener,
                                                          const Value& settings) {
    std::lock_guard lock(mutex);
    listenerSettings = settings;
    listeners[listener->type()] = listener;
    note(std::string("register with settings ") + nameOf(listener->type()));
    return {};
}

ResultPair RecordingHost::register_listener(const Context&, IZrHmiSrvListener* listener) {
    std::lock_guard lock(mutex);
    listeners[listener->type()] = listener;
    note(std::string("register ") + nameOf(listener->type()));
    return {};
}

ResultPair RecordingHost::unregister_listener(const Context&, IZrHmiSrvListener* listener) {
    std::lock_guard lock(mutex);
    listeners.erase(listener->type());
    note(std::string("unregister ") + nameOf(listener->type()));
    return {};
}

ResultPair RecordingHost::apply_alarm(const Context&, AlarmOperation operation, Alarm alarm) {
    std::lock_guard lock(mutex);
    if (operation == AlarmOperation::raise || alarms.contains(alarm.id()))
        alarms[alarm.id()] = alarm;
    const char* const verbs[] = {"raise ", "update ", "remove "};
    note(verbs[static_cast<int>(operation)] + std::to_string(alarm.id()));
    return {};
}

ResultPair RecordingHost::drop_event(const Context&, Event event) {
    std::lock_guard lock(mutex);
    if (event.payload().type() == ValueType::alarm) {
        const int id = event.payload().get_alarm().id();
        alarms.erase(id);
        note("drop " + std::to_string(id));
        return {};
    }
    const Value payload = event.payload();
    const auto found = std::find_if(messages.begin(), messages.end(), [&](const Message& message) {
        return Value(message) == payload;
    });
    if (found != messages.end())
        messages.erase(found);
    note("drop message");
    return {};
}

ResultPair RecordingHost::read_configuration(Value& result, const Context&, const char* path) {
    std::lock_guard lock(mutex);
    Value value = configuration;
    for (std::string_view rest = path; !rest.empty();) {
        const std::size_t end = std::min(rest.find("::"), rest.size());
        const Value* found = value.lookup(rest.substr(0, end));
        value = found ? Value(*found) : Value();
        rest.remove_prefix(std::min(end + 2, rest.size()));
    }
    result = value;
    return {};
}

ResultPair RecordingHost::reset_events(const Context&) {
    std::lock_guard lock(mutex);
    ++resets;
    note("reset");
    return {};
}

ResultPair RecordingHost::announce(const Context&, const char* product) {
    std::lock_guard lock(mutex);
    note(std::string("announce ") + product);
    return {};
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
        if (event.payload().type() == ValueType::alarm) {
            const Alarm alarm = event.payload().get_alarm();
            alarms[alarm.id()] = alarm;
        } else {
            messages.push_back(event.payload().get_message());
        }
    }
    note(std::string("provided ") + target + " " + std::to_string(events.size()));
}

bool RecordingHost::waitFor(const std::function<bool()>& condition) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::seconds(10), condition);
}

void RecordingHost::look(const std::function<void()>& visit) {
    std::lock_guard lock(mutex);
    visit();
}

void RecordingHost::setConfiguration(const char* name, Value value) {
    std::lock_guard lock(mutex);
    configuration.insert_or_update(name, std::move(value));
}

void RecordingHost::setTarget(const char* name, const char* address, bool enabled) {
    std::lock_guard lock(mutex);
    addTarget(configuration, name, address, enabled);
}

void RecordingHost::removeTarget(const char* name) {
    std::lock_guard lock(mutex);
    Value& targets = configuration["TARGET_SYSTEMS"];
    if (const auto found = targets.find(name); found != targets.end())
        targets.remove(found);
}

std::size_t RecordingHost::logged(std::string_view name) const {
    return static_cast<std::size_t>(std::count_if(
        log.begin(), log.end(), [&](const Message& entry) { return entry.name().view() == name; }));
}

Message RecordingHost::lastLogged(std::string_view name) const {
    const auto found =
        std::find_if(log.rbegin(), log.rend(),
                     [&](const Message& entry) { return entry.name().view() == name; });
    return found == log.rend() ? Message() : *found;
}

}  // namespace bridge_test
