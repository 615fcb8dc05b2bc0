#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "events/EventContext.h"
#include "events/EventStore.h"
#include "events/ImportProgress.h"
#include "events/ImportedIdentities.h"
#include "events/RejectedEvents.h"
#include "targetsystem/proxy/ComPtr.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// What a logger holds, fetched and converted beside the running store. Used on one thread, and
/// destroyed with no lock held: it drops the proxy objects of the whole import.
class ImportSnapshot {
public:
    using Container = EventStore::Container;
    using Logger = ZrEventLoggerFnxProxyLib::IZrEventLogger4;
    using IZrAlarm = ZrEventLoggerFnxProxyLib::IZrAlarm;
    using IZrLoggedEvent = ZrEventLoggerFnxProxyLib::IZrLoggedEvent;

    ImportSnapshot(const EventContext& context, const EventStore& running, RejectedEvents& rejected,
                   ImportProgress& progress)
        : context(context), running(running), rejected(rejected), progress(progress) {}

    /// Throws what the proxy throws, or Abandoned when the target is over.
    void fetch(Logger& logger);

    std::shared_ptr<Container> takeStore() { return std::move(rebuilt); }
    ImportedIdentities takeIdentities() { return std::move(identities); }
    const EventStore::Evicted& evictions() const { return evicted; }
    void keepUntilTheEnd(std::shared_ptr<Container> replaced) { former = std::move(replaced); }

    bool tookOver(const IZrAlarm* alarm) const { return activeAlarms.contains(alarm); }
    /// Whether this is an active alarm that was left out, and not raised again since.
    bool leftOut(IZrAlarm& alarm) const;
    std::uint64_t loggedCount() const { return fetchedLogged; }
    std::uint64_t activeCount() const { return activeAlarms.size(); }
    std::uint64_t keptIdCount() const { return keptIds; }

private:
    struct Logged {
        ZrHmiSrv::Value payload;
        std::optional<AlarmKey> key;  ///< of an alarm
    };
    /// A logged alarm that the log shows as still active.
    struct Skipped {
        ZrAtlCom::ComPtr<IZrLoggedEvent> item;
        AlarmKey key;
        AlarmInstance instance;
        ZrHmiSrv::Value payload;
    };
    struct Active {
        ZrAtlCom::ComPtr<IZrAlarm> source;
        AlarmKey key;
        std::optional<int> keptId;
        ZrHmiSrv::Alarm alarm;
    };

    /// Stands for the same alarm as long as its key is the same.
    struct Rejected {
        ZrAtlCom::ComPtr<IZrAlarm> source;
        AlarmKey key;
    };

    void takeLogged(ZrAtlCom::ComPtr<IZrLoggedEvent> item);
    void takeActive(ZrAtlCom::ComPtr<IZrAlarm> source);
    void convertActive();
    void convertUnlisted();
    std::unordered_set<AlarmInstance> listedInstances() const;
    void keepIds();
    void drawIds();
    void build();
    bool isActive(const Logged& entry) const;
    void insertLogged();
    void insertActive();
    void insertUnlisted();

    const EventContext& context;
    const EventStore& running;
    RejectedEvents& rejected;
    ImportProgress& progress;
    std::uint64_t fetchedLogged = 0;
    std::uint64_t keptIds = 0;
    std::deque<Logged> logged;  ///< leaves it for the store, one by one
    std::vector<Skipped> skipped;
    std::vector<Active> active;
    std::unordered_set<const IZrAlarm*> activeAlarms;
    std::unordered_map<const IZrAlarm*, Rejected> rejectedAlarms;
    std::unordered_set<AlarmKey> activeKeys;
    std::unordered_set<AlarmKey> clearedKeys;  ///< the same, told apart by the time of the clear
    ImportedIdentities identities;
    std::shared_ptr<Container> rebuilt;
    std::shared_ptr<Container> former;
    EventStore::Evicted evicted;
};

}  // namespace ZrHmiEventLogger
