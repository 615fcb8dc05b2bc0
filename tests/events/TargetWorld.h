#pragma once

#include <atomic>
#include <deque>

#include "events/LoggedEventImport.h"
#include "tests/events/FakeLogger.h"
#include "tests/events/RecordingLogging.h"

namespace bridge_test {

/// The events of one target system, the logger that they come from and who hears of them.
struct TargetWorld {
    using Kind = ZrHmiEventLogger::NotificationKind;

    /// `timeout`: of a call, in seconds.
    explicit TargetWorld(std::int64_t limit, std::int64_t timeout = 60)
        : context{"Filler", "Domain", host, ids, limit, ZrHmiSrv::Timespan(timeout * 1'000'000'000),
                  stopping, retired} {}

    FakeEvent& source(int raised, std::optional<ULONG> instance = {}) {
        FakeEventData data;
        data.raised = at(raised);
        data.instanceId = instance;
        return sources.emplace_back(border, data);
    }
    FakeEvent& loggedMessage(int raised) { return *logger.logged.emplace_back(&source(raised)); }
    FakeEvent& loggedAlarm(int raised, ULONG instance, std::optional<bool> isActive = {}) {
        FakeEvent& alarm = *logger.logged.emplace_back(&source(raised, instance));
        alarm.data.type = fnx::LoggedEventType::alarm;
        alarm.data.isActive = isActive;
        return alarm;
    }
    FakeEvent& active(int raised, ULONG instance) {
        return *logger.active.emplace_back(&source(raised, instance));
    }

    // Notifications.
    void raised(FakeEvent& alarm) { notify(Kind::alarmRaised, alarm, VARIANT_FALSE); }
    void cleared(FakeEvent& alarm, VARIANT_BOOL removed) {
        notify(Kind::alarmCleared, alarm, removed);
    }
    void confirmed(FakeEvent& alarm, VARIANT_BOOL removed) {
        notify(Kind::alarmConfirmed, alarm, removed);
    }
    void notify(Kind kind, FakeEvent& alarm, VARIANT_BOOL removed) {
        deliver({kind, ZrAtlCom::ComPtr<fnx::IZrAlarm>(&alarm), {}, removed, {}});
    }
    void sent(FakeEvent& message) {
        deliver({Kind::messageSent, {}, ZrAtlCom::ComPtr<fnx::IZrMessage>(&message), {}, {}});
    }
    void deliver(ZrHmiEventLogger::RecordedCallback&& notification) {
        notifications.deliver(std::move(notification),
                              [this](const auto& live) { lifecycle.handle(live, false); });
    }

    ZrHmiEventLogger::ImportResultPtr import() { return importer.run(logger); }
    HRESULT confirmByOperator(int id) {
        ZrHmiSrv::Alarm alarm;
        alarm.set_id(id);
        return lifecycle.confirm(alarm);
    }

    /// One line an event, oldest first.
    std::vector<std::string> stored() const {
        std::vector<std::string> lines;
        for (const ZrHmiSrv::Event& event : store.eventsOldestFirst())
            lines.push_back(textOf(event));
        return lines;
    }
    LONG references() const {
        LONG sum = 0;
        for (const FakeEvent& source : sources)
            sum += source.references;
        return sum;
    }

    FakeBorder border;
    std::deque<FakeEvent> sources;  ///< live as long as the store that refers to them
    FakeLogger logger{border};
    RecordingLogging host;
    std::atomic<std::int32_t> ids = 1;
    std::atomic<bool> stopping = false;
    std::atomic<bool> retired = false;
    const ZrHmiEventLogger::EventContext context;
    ZrHmiEventLogger::EventStore store{context};
    ZrHmiEventLogger::AlarmLifecycle lifecycle{context, store};
    ZrHmiEventLogger::NotificationRecorder notifications{20};
    ZrHmiEventLogger::LoggedEventImport importer{context, store, notifications, lifecycle};
};

}  // namespace bridge_test
