#include "robustness/ContentCheck.h"

#include <algorithm>
#include <map>

using namespace ZrHmiSrv;
using ZrHmiEventLogger::EventStatistics;
using ZrHmiEventLogger::TargetSystem;

namespace bridge_test {

namespace {

/// What a target system hands to a host that asks for its events.
class Content final : public IEventReceiver {
public:
    void replace_events(const char*, std::span<const Event> events) override {
        for (const Event& event : events) {
            images.insert(imageOf(event));
            if (event.payload().type() == ValueType::alarm) {
                const Alarm alarm = event.payload().get_alarm();
                duplicates += !alarms.try_emplace(alarm.id(), alarm).second;
                invalid += alarm.alarm_state() == AlarmState::invalid;
            } else {
                messages.push_back(event.payload().get_message());
            }
        }
    }

    EventImages images;
    std::map<int, Alarm> alarms;
    std::vector<Message> messages;
    std::size_t duplicates = 0;
    std::size_t invalid = 0;
};

void expectEqual(Findings& findings, const char* what, std::uint64_t is, std::uint64_t expected) {
    if (is != expected)
        findings.push_back(std::string(what) + " is " + std::to_string(is) + ", not " +
                           std::to_string(expected));
}

void checkCounters(Findings& findings, const EventStatistics& counters, const Content& store,
                   std::size_t active) {
    const std::size_t all = store.images.size();
    expectEqual(findings, "cachedMessagesCount", counters.cachedMessagesCount,
                store.messages.size());
    expectEqual(findings, "cachedAlarmsCount", counters.cachedAlarmsCount,
                all - store.messages.size());
    expectEqual(findings, "cachedInvalidAlarmsCount", counters.cachedInvalidAlarmsCount,
                store.invalid);
    expectEqual(findings, "activeAlarmsCount", counters.activeAlarmsCount, active);
    expectEqual(findings, "inactiveEventsCount", counters.inactiveEventsCount, all - active);
    if (counters.importedEventsCount < all ||
        counters.importedMessagesCount < store.messages.size())
        findings.emplace_back("fewer events were imported than are held");
}

/// Equal in every property, not only in those of an image.
void checkHost(Findings& findings, RecordingHost& host, const Content& store) {
    EventImages shown;
    bool same = false;
    host.look([&] {
        for (const auto& [id, alarm] : host.alarms)
            shown.insert(imageOf(alarm));
        for (const Message& message : host.messages)
            shown.insert(imageOf(message));
        same = std::is_permutation(
                   host.messages.begin(), host.messages.end(), store.messages.begin(),
                   store.messages.end(),
                   [](const Message& a, const Message& b) { return Value(a) == Value(b); }) &&
               std::equal(host.alarms.begin(), host.alarms.end(), store.alarms.begin(),
                          store.alarms.end(), [](const auto& a, const auto& b) {
                              return a.first == b.first && Value(a.second) == Value(b.second);
                          });
    });
    const auto before = findings.size();
    compareImages(findings, "the host", shown, "the store", store.images);
    if (!same && findings.size() == before)
        findings.emplace_back("host and store differ in ids or parameters");
}

}  // namespace

Findings checkContent(TargetSystem& target, RecordingHost& host, const LoggerContent& logger) {
    Findings findings;
    Content store;
    target.provideEvents(store);
    compareImages(findings, "the store", store.images, "the logger", logger.events);
    checkHost(findings, host, store);
    checkCounters(findings, target.statistics(), store, logger.active);
    expectEqual(findings, "the number of ids given twice", store.duplicates, 0);
    if (!target.GetConnectionState().connected)
        findings.emplace_back("not known as connected");
    return findings;
}

}  // namespace bridge_test
