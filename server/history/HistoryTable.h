#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "server/history/Database.h"
#include "server/history/HistoryRow.h"

namespace hmi {

/// A row whose text is not known yet.
struct MissingText {
    std::int64_t place;
    EventRecordPtr event;
};

/// The rows of the history, for its one writer. Within a transaction; when that fails, the table is
/// made anew. Throws DatabaseError.
class HistoryTable {
public:
    /// For each event its text, or nothing when it is not known at once. Waits for nothing.
    using KnownTexts = std::function<std::vector<std::optional<std::string>>(
        std::span<const EventRecordPtr>)>;

    /// `station`: whose changes these are; empty when there is only one.
    HistoryTable(Database& database, std::string station, KnownTexts knownTexts);

    void begin();
    /// Writes what is not written yet; before the commit.
    void end();

    /// Answers its sequence.
    std::int64_t append(HistoryRow row);
    void setText(std::int64_t place, std::string_view text);

    struct Birth {
        std::int64_t occurrence;
        std::int64_t digest;
    };
    /// The occurrences raised at that time whose digest lies between these, the oldest first.
    std::vector<Birth> births(ZrHmiSrv::Timestamp raised, std::int64_t first, std::int64_t last);
    struct Step {
        HistoryChange change;
        ZrHmiSrv::Timestamp at;
    };
    std::vector<Step> lifeOf(std::int64_t occurrence);
    /// The alarms of a target system whose end is not there.
    std::vector<std::int64_t> unended(std::string_view target);
    /// The last row of an occurrence, as it can be written again; nothing when it has none.
    std::optional<HistoryRow> lastOf(std::int64_t occurrence);
    /// The end of this one is not waited for any more.
    void giveUp(std::int64_t occurrence) { forgetUnended.bind(occurrence).run(); }
    /// Asks for the text of an occurrence that has been left without.
    void wishText(std::int64_t occurrence, const EventRecordPtr& event);
    /// Whether what is as old as this has been removed already.
    bool isRemoved(ZrHmiSrv::Timestamp at) const noexcept;
    std::vector<MissingText> takeWishes() { return std::exchange(wishes, {}); }
    std::int64_t lastSequence() const noexcept { return sequence; }

    /// Removes the oldest rows, `count` at most and only those before `until`; answers how many.
    std::size_t removeOldest(std::size_t count, ZrHmiSrv::Timestamp until);

private:
    struct Pending {
        std::int64_t sequence;
        HistoryRow row;
    };
    struct Words {
        std::int64_t place;
        std::string text;
        std::string marks;
    };
    using SeriesKey = std::tuple<std::string, HistoryChange, std::uint32_t>;

    void flush();
    std::int64_t insert(const Pending& pending, const std::optional<std::string>& text);
    void keepUnended(const HistoryRow& row, std::int64_t occurrence);
    std::int64_t seriesOf(const std::string& target, HistoryChange change, std::uint32_t severity);

    Database& database;
    const std::string station;
    const KnownTexts knownTexts;
    std::int64_t sequence = 0;
    std::int64_t floor = 0;           ///< the greatest place that was removed
    ZrHmiSrv::Timestamp newestBirth;  ///< no occurrence was raised later
    std::vector<Pending> pending;
    std::vector<MissingText> wishes;
    std::unordered_map<std::int64_t, std::int64_t> nextPlaces;  ///< where places are taken
    std::map<SeriesKey, std::int64_t> series;

    std::vector<Words> words;
    Statement insertRow, insertWords, deleteWords, findBirths, findLife, findTextless, findMarks,
        updateText, insertSeries, findSeries, takenFrom, readOldest, deleteRow, readMeta, writeMeta, findUnended,
        addUnended, forgetUnended, findLast;
};

}  // namespace hmi
