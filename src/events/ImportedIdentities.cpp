#include "events/ImportedIdentities.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "events/EventParameters.h"

using ZrHmiSrv::Message;
using ZrHmiSrv::Text;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

namespace {

/// Live and logged events do not say all numbers in the same type.
bool areEqualParts(const Value* a, const Value* b) {
    if (!a || !b)
        return a == b;
    if (a->is_number() && b->is_number())
        return static_cast<double>(*a) == static_cast<double>(*b);
    return *a == *b;
}

/// By class, id, source and arguments.
bool areEqualMessages(const Message& a, const Message& b) {
    const Text* const parts[] = {&keys().eventClass, &keys().eventId,    &keys().sourceId,
                                 &keys().sourceName, &keys().sourceGuid, &keys().numArguments,
                                 &keys().types,      &keys().data};
    return std::all_of(std::begin(parts), std::end(parts), [&](const Text* part) {
        return areEqualParts(a.parameters().lookup(part->view()),
                             b.parameters().lookup(part->view()));
    });
}

}  // namespace

void ImportedIdentities::addMessage(const Message& message) {
    const Timestamp raised = message.time_raised();
    isSorted = isSorted && (messages.empty() || messages.back().timeRaised <= raised);
    messages.push_back({raised, message});
}

void ImportedIdentities::addUnsettled(const UnsettledAlarm& alarm, const AlarmInstance& instance) {
    addAlarm(alarm.key);
    unsettledAlarms.insert_or_assign(alarm.key, alarm.hostId);
    unsettledInstances.insert_or_assign(instance, alarm.key);
}

bool ImportedIdentities::takeMessage(const Message& message) {
    if (messages.empty())
        return false;
    if (!std::exchange(isSorted, true))
        std::ranges::stable_sort(messages, {}, &ImportedMessage::timeRaised);
    auto same =
        std::ranges::lower_bound(messages, message.time_raised(), {}, &ImportedMessage::timeRaised);
    for (; same != messages.end() && same->timeRaised == message.time_raised(); ++same)
        if (same->message.isset() && areEqualMessages(same->message, message)) {
            same->message = {};
            return true;
        }
    return false;
}

std::optional<UnsettledAlarm> ImportedIdentities::unsettled(const AlarmKey& key) const {
    const auto found = unsettledAlarms.find(key);
    if (found == unsettledAlarms.end())
        return std::nullopt;
    return UnsettledAlarm{key, found->second};
}

std::optional<UnsettledAlarm> ImportedIdentities::unsettled(const AlarmInstance& instance) const {
    const auto found = unsettledInstances.find(instance);
    return found != unsettledInstances.end() ? unsettled(found->second) : std::nullopt;
}

}  // namespace ZrHmiEventLogger
