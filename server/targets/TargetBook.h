#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Mutex.h"
#include "server/events/ChangeFeed.h"
#include "server/targets/GapBook.h"
#include "server/targets/TargetStatus.h"

namespace hmi {

/// What the log and the diagnostics tell of the target systems. The log tells it first and in
/// order: a target system says that it has failed before it takes its alarms back, and that it has
/// been imported before it hands them over. Diagnostics bring what is not logged: that it was lost,
/// its counters, that it exists. Thread-safe.
class TargetBook final : public IChangeListener {
public:
    bool post(const Change& change) noexcept override;

    /// Which target systems there are, each with a number that grows with what is logged of it.
    using Versions = std::map<std::string, std::uint64_t>;
    Versions versions() const;
    /// Takes over diagnostics that were asked for after `before`: what has been logged of a target
    /// system since then is newer than they are. Those of its names that have vanished go. Answers
    /// those that may have been lost and turn out to be well.
    std::vector<std::string> observe(const ZrHmiSrv::Value& diagnostics, const Versions& before,
                                     const std::map<std::string, std::string>& addresses);

    /// Whether what it hands over is what its logger holds. True for one that nothing is known of.
    bool isImported(const std::string& target) const;
    std::vector<std::shared_ptr<const TargetStatus>> all() const;
    std::vector<GapPtr> gaps(const std::optional<std::string>& target,
                             const std::optional<ZrHmiSrv::Timestamp>& from,
                             const std::optional<ZrHmiSrv::Timestamp>& to) const;

    /// What readers have not been told yet, one change each.
    std::vector<Change> takeNews();
    /// What people have not been told yet of states that were entered, in order, a line each.
    std::vector<std::string> takeLines();

private:
    using Time = ZrHmiSrv::Timestamp;
    struct Entry {
        TargetStatus status;
        std::uint64_t version = 0;
        Time wellAt = {};     ///< when it was seen to be good for the last time
        int doubts = 0;       ///< it has failed: so many looks it takes to know whether it is lost
        bool changed = true;  ///< readers have not been told
    };

    void onLog(const ZrHmiSrv::Message& message);
    void onEvent(const EventRecord& event, bool isNew);
    void onConnected(Entry& entry) REQUIRES(mutex);
    void onImported(Entry& entry, const ZrHmiSrv::Value& parameters) REQUIRES(mutex);
    void onConnectFailed(Entry& entry, const std::string& hresult) REQUIRES(mutex);
    void onForgotten(Entry& entry, const ZrHmiSrv::Value& parameters) REQUIRES(mutex);
    bool onDiagnosed(Entry& entry, const ZrHmiSrv::Value& diagnosed) REQUIRES(mutex);
    void lose(Entry& entry) REQUIRES(mutex);
    void enter(Entry& entry, TargetState state) REQUIRES(mutex);
    Entry* find(const std::string& target) REQUIRES(mutex);
    Entry* findOrAdd(const std::string& target) REQUIRES(mutex);

    static constexpr std::size_t maxTargets = 10'000;
    static constexpr std::size_t maxLines = 1'000;

    mutable Mutex mutex;  ///< guards all below; nothing is called under it
    std::map<std::string, Entry> entries GUARDED_BY(mutex);
    GapBook gapBook GUARDED_BY(mutex);
    std::vector<std::string> lines GUARDED_BY(mutex);
};

}  // namespace hmi
