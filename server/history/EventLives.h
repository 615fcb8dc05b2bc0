#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "server/events/Change.h"
#include "server/history/HistoryTable.h"

namespace hmi {

/// Tells what is new about events, and writes just that: whatever was missed, of an event is written
/// what the history does not hold of it, and once. For the history's one writer; when a transaction
/// fails it is made anew, and takes from the file what it has to know.
class EventLives {
public:
    explicit EventLives(HistoryTable& table) : table(table) {}

    void onAlarm(const EventRecordPtr& alarm);
    void onMessage(const EventRecordPtr& message);
    void onConfirmation(const EventRecordPtr& alarm);
    /// The next that a target system hands over is all that its logger knows.
    void onImported(const std::string& target) { imported.insert(target); }
    /// All events of a target system: what is not among them is not known any more.
    void onHandedOver(const Replacement& all);
    void onForgotten(const EventRecord& event);

    /// All events of a target system, of which some are still to be told as new.
    void bringBack(const Replacement& all);
    /// All of those have been told.
    void endBringingBack() { broughtBack.clear(); }
    bool isBringingBack() const { return !broughtBack.empty(); }

private:
    using Time = ZrHmiSrv::Timestamp;
    /// What the history holds of an occurrence of an alarm.
    struct Life {
        std::int64_t occurrence = 0;  ///< 0: its beginning is not in the history any more
        Time raised;
        Time cleared = {};
        Time confirmed = {};
        bool isOver = false;
        EventRecordPtr last = {};
    };
    using Lives = std::unordered_map<std::int64_t, Life>;  ///< by the alarm's id in this run
    enum class Source { live, handedOver };
    using Occurrences = std::unordered_set<std::int64_t>;
    /// Occurrences that are the same to a reader of the logger, each of which stands for one event.
    struct Twins {
        std::vector<HistoryTable::Birth> births;
        std::size_t next = 0;
    };

    static Occurrences occurrencesOf(const Lives& of);

    Life begin(const EventRecordPtr& alarm, HistoryChange change, Source source,
               std::int64_t former = 0);
    Life resume(const EventRecordPtr& alarm, std::int64_t occurrence);
    void follow(const EventRecordPtr& alarm, Life& life, Source source);
    void add(const EventRecordPtr& alarm, const Life& life, HistoryChange change, Time at);
    Life& lifeOf(const EventRecordPtr& alarm);
    void replace(const Replacement& all);
    void endUnseen(const std::string& target);
    std::vector<EventRecordPtr> takeOver(const Replacement& all, Lives& known);
    void recognise(std::vector<EventRecordPtr>& strangers, bool byArguments);

    HistoryTable& table;
    std::map<std::string, Lives> lives;  ///< by target system
    std::unordered_set<std::int64_t> broughtBack;  ///< the numbers of messages
    std::unordered_set<std::string> imported;      ///< and have handed over nothing since
};

}  // namespace hmi
