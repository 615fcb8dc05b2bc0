#include "robustness/HostLink.h"

#include <utility>

#include "robustness/EventImage.h"

using namespace ZrHmiSrv;

namespace bridge_test {

void HostLink::logMessage(Message message) {
    host.send_message(context, message, false);
}

void HostLink::reportCommunicationError(const Text& text) {
    Lock lock(mutex);
    reported.emplace_back(text.view());
}

void HostLink::reportCommunicationError(const Text& text, const std::exception& exception) {
    Lock lock(mutex);
    reported.push_back(std::string(text.view()) + ": " + exception.what());
}

void HostLink::sendMessage(Message message) {
    host.send_message(context, message, true);
}

void HostLink::raiseAlarm(Alarm alarm) {
    note(alarm);
    host.apply_alarm(context, AlarmOperation::raise, std::move(alarm));
}

void HostLink::updateAlarm(Alarm alarm, bool removed) {
    note(alarm);
    host.apply_alarm(context, removed ? AlarmOperation::remove : AlarmOperation::update,
                     std::move(alarm));
}

void HostLink::forgetEvent(Event event) {
    host.drop_event(context, std::move(event));
}

void HostLink::replace_events(const char* target, std::span<const Event> events) {
    for (const Event& event : events)
        if (event.payload().type() == ValueType::alarm)
            note(event.payload().get_alarm());
    host.replace_events(target, events);
}

void HostLink::note(const Alarm& alarm) {
    const std::string name = sourceOf(alarm);
    if (name.empty())
        return;
    Lock lock(mutex);
    const auto [entry, added] = owners.try_emplace(alarm.id(), name);
    if (!added && entry->second != name)
        conflicts.push_back("id " + std::to_string(alarm.id()) + " of " + entry->second +
                            " given to " + name);
}

std::vector<std::string> HostLink::idConflicts() const {
    Lock lock(mutex);
    return conflicts;
}

std::vector<std::string> HostLink::errors() const {
    Lock lock(mutex);
    return reported;
}

}  // namespace bridge_test
