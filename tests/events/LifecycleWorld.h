#pragma once

#include <atomic>
#include <deque>
#include <utility>

#include "events/AlarmLifecycle.h"
#include "events/EventStore.h"
#include "tests/events/FakeEvents.h"
#include "tests/events/RecordingLogging.h"

namespace bridge_test {

/// The events of one target system and who hears of them.
struct LifecycleWorld {
    explicit LifecycleWorld(std::int64_t limit = 100)
        : context{"Filler", "Domain", host, ids, limit} {}

    FakeBorder border;
    std::deque<FakeAlarm> alarms;  ///< live as long as the store that refers to them
    RecordingLogging host;
    std::atomic<std::int32_t> ids = 1;
    const ZrHmiEventLogger::EventContext context;
    ZrHmiEventLogger::EventStore store{context};
    ZrHmiEventLogger::AlarmLifecycle lifecycle{context, store};

    template <class Data>
    FakeAlarm& alarm(Data data) {
        return alarms.emplace_back(border, std::move(data));
    }
    void raise(FakeAlarm& alarm, bool quiet = false) { lifecycle.onAlarmRaised(alarm, quiet); }
    void clear(FakeAlarm& alarm, VARIANT_BOOL removed, bool quiet = false) {
        lifecycle.onAlarmCleared(alarm, removed, quiet);
    }
    void confirm(FakeAlarm& alarm, VARIANT_BOOL removed, bool quiet = false) {
        lifecycle.onAlarmConfirmed(alarm, removed, quiet);
    }
    HRESULT confirmByOperator(int id) {
        ZrHmiSrv::Alarm alarm;
        alarm.set_id(id);
        return lifecycle.confirm(alarm);
    }
    /// One line an event, oldest first: "1s alarm 3 cleared 2s confirmed 4s (state 3)", "2s
    /// message".
    std::vector<std::string> stored() const {
        std::vector<std::string> lines;
        for (const ZrHmiSrv::Event& event : store.eventsOldestFirst())
            lines.push_back(textOf(event.time_received()) + describe(event.payload()));
        return lines;
    }

private:
    static std::string describe(const ZrHmiSrv::Value& payload) {
        if (payload.type() != ZrHmiSrv::ValueType::alarm)
            return " message";
        const ZrHmiSrv::Alarm alarm = payload.get_alarm();
        const bool invalid = alarm.alarm_state() == ZrHmiSrv::AlarmState::invalid;
        std::string text = (invalid ? " invalid " : " alarm ") + std::to_string(alarm.id());
        if (alarm.time_cleared().isset())
            text += " cleared " + textOf(alarm.time_cleared());
        if (alarm.time_confirmed().isset())
            text += " confirmed " + textOf(alarm.time_confirmed());
        return text;
    }
};

}  // namespace bridge_test
