#include "server/history/HistoryTable.h"

#include <algorithm>
#include <limits>

#include "server/history/HistoryWords.h"
#include "server/json/EventJson.h"

namespace hmi {

using ZrHmiSrv::Timestamp;

namespace {

constexpr std::size_t rowsAtOnce = 1000;

/// What is found of a row besides its event.
std::string wordsOf(std::string_view text, std::string_view comment) {
    std::string words(text);
    return words.append("\n").append(comment);
}

}  // namespace

HistoryTable::HistoryTable(Database& database, std::string given, KnownTexts texts)
    : database(database),
      station(std::move(given)),
      knownTexts(std::move(texts)),
      insertRow(database, "INSERT INTO change VALUES"
                          "(?1,?2,?3,?4,nullif(?5,0),?6,nullif(?7,0),?8,?9,?10,?11)"),
      insertWords(database, "INSERT INTO words(rowid, text, marks) VALUES(?1,?2,?3)"),
      deleteWords(database,
                  "INSERT INTO words(words, rowid, text, marks) VALUES('delete',?1,?2,?3)"),
      findBirths(database, "SELECT occurrence, digest FROM change "
                           "WHERE raised=?1 AND digest BETWEEN ?2 AND ?3 ORDER BY seq"),
      findLife(database, "SELECT s.change, c.at FROM change c JOIN series s ON s.id=c.series "
                         "WHERE c.occurrence=?1"),
      findTextless(database, "SELECT place FROM change WHERE occurrence=?1 AND text IS NULL"),
      findMarks(database, "SELECT s.station, s.target, s.change, s.severity, c.text, c.comment "
                          "FROM change c JOIN series s ON s.id=c.series WHERE c.place=?1"),
      updateText(database, "UPDATE change SET text=?2 WHERE place=?1"),
      insertSeries(database,
                   "INSERT OR IGNORE INTO series(station,target,change,severity) VALUES(?1,?2,?3,?4)"),
      findSeries(database, "SELECT id FROM series "
                           "WHERE station=?1 AND target=?2 AND change=?3 AND severity=?4"),
      takenFrom(database, "SELECT place FROM change WHERE place>=?1 ORDER BY place"),
      readOldest(database, "SELECT c.place, c.text, c.comment, s.station, s.target, s.change, "
                           "s.severity FROM change c JOIN series s ON s.id=c.series "
                           "WHERE c.place<?1 ORDER BY c.place LIMIT ?2"),
      deleteRow(database, "DELETE FROM change WHERE place=?1"),
      readMeta(database, "SELECT value FROM meta WHERE name=?1"),
      writeMeta(database, "UPDATE meta SET value=?2 WHERE name=?1"),
      findUnended(database, "SELECT occurrence FROM unended WHERE target=?1"),
      addUnended(database, "INSERT OR IGNORE INTO unended VALUES(?1,?2)"),
      forgetUnended(database, "DELETE FROM unended WHERE occurrence=?1"),
      findLast(database, "SELECT c.at, c.event, c.text, s.target, s.severity FROM change c "
                         "JOIN series s ON s.id=c.series WHERE c.occurrence=?1 "
                         "ORDER BY c.place DESC LIMIT 1") {
    newestBirth =
        Timestamp(database.number("SELECT max(raised) FROM change WHERE digest IS NOT NULL"));
}

void HistoryTable::begin() {
    const auto read = [this](std::string_view name) {
        readMeta.bind(name);
        const std::int64_t value = readMeta.step() ? readMeta.integer(0) : 0;
        readMeta.reset();
        return value;
    };
    sequence = read("seq");
    floor = read("floor");
    if (nextPlaces.size() > 10'000)
        nextPlaces.clear();
}

void HistoryTable::end() {
    flush();
    // In order of their places, as the index takes them best.
    std::sort(words.begin(), words.end(),
              [](const Words& a, const Words& b) { return a.place < b.place; });
    for (const Words& each : words)
        insertWords.bind(each.place, each.text, each.marks).run();
    words.clear();
    writeMeta.bind("seq", sequence).run();
}

std::int64_t HistoryTable::append(HistoryRow row) {
    if (row.birth)
        newestBirth = std::max(newestBirth, row.birth->raised);
    pending.push_back({++sequence, std::move(row)});
    if (pending.size() == rowsAtOnce)
        flush();
    return sequence;
}

void HistoryTable::flush() {
    const auto rows = std::exchange(pending, {});
    std::vector<EventRecordPtr> events;
    for (const Pending& each : rows) {
        if (each.row.record)
            events.push_back(each.row.record);
    }
    auto texts = knownTexts(events);
    auto next = texts.begin();
    for (const Pending& each : rows) {
        if (!each.row.record) {
            insert(each, each.row.text);
            continue;
        }
        const std::int64_t place = insert(each, *next);
        if (!*next++)
            wishes.push_back({place, each.row.record});
    }
}

/// Answers its place.
std::int64_t HistoryTable::insert(const Pending& each, const std::optional<std::string>& text) {
    const HistoryRow& row = each.row;
    const std::string& target = row.record ? row.record->target : row.target;
    const std::uint32_t severity = row.record ? row.record->severity : row.severity;
    std::string event = row.event;
    if (row.record)
        appendJson(event, *row.record);
    const std::int64_t ofSeries = seriesOf(target, row.change, severity);
    const std::int64_t occurrence = row.birth ? each.sequence : row.occurrence;
    const EventIdentity identity = row.birth.value_or(EventIdentity());
    const std::int64_t first = placeOf(row.at);
    const auto taken = nextPlaces.find(first);
    std::int64_t place = taken == nextPlaces.end() ? first : taken->second;
    for (bool isWritten = false; !isWritten;) {
        try {
            insertRow
                .bind(place, each.sequence, row.at.nanoseconds(), ofSeries,
                      occurrence, identity.raised.nanoseconds(), identity.digest, event, text,
                      row.by, row.comment)
                .run();
            isWritten = true;
        } catch (const DatabaseError& error) {
            if (!error.isTaken())
                throw;
            for (takenFrom.bind(place); takenFrom.step() && takenFrom.integer(0) == place;)
                ++place;
            takenFrom.reset();
        }
    }
    if (place != first || taken != nextPlaces.end())
        nextPlaces[first] = place + 1;
    keepUnended(row, occurrence);
    if ((text && !text->empty()) || !row.comment.empty())
        words.push_back({place, wordsOf(text.value_or(""), row.comment),
                         marksOf(station, target, row.change, severity)});
    return place;
}

void HistoryTable::keepUnended(const HistoryRow& row, std::int64_t occurrence) {
    if (row.former != 0)
        giveUp(row.former);
    if (row.change == HistoryChange::removed && occurrence != 0)
        giveUp(occurrence);
    else if (row.birth && row.record && row.record->alarm())
        addUnended.bind(occurrence, row.record->target).run();
}

std::int64_t HistoryTable::seriesOf(const std::string& target, HistoryChange change,
                                    std::uint32_t severity) {
    const SeriesKey key{target, change, std::min(severity, ungraded)};
    const auto found = series.find(key);
    if (found != series.end())
        return found->second;
    const auto number = static_cast<std::int64_t>(change);
    const auto level = static_cast<std::int64_t>(std::get<2>(key));
    insertSeries.bind(station, target, number, level).run();
    findSeries.bind(station, target, number, level).step();
    const std::int64_t id = findSeries.integer(0);
    findSeries.reset();
    series.emplace(key, id);
    return id;
}

void HistoryTable::setText(std::int64_t place, std::string_view text) {
    findMarks.bind(place);
    if (!findMarks.step() || !findMarks.isNull(4))
        return findMarks.reset();
    const std::string comment(findMarks.text(5));
    const std::string marks =
        marksOf(findMarks.text(0), findMarks.text(1),
                static_cast<HistoryChange>(findMarks.integer(2)),
                static_cast<std::uint32_t>(findMarks.integer(3)));
    findMarks.reset();
    if (!comment.empty())
        deleteWords.bind(place, wordsOf({}, comment), marks).run();
    updateText.bind(place, text).run();
    if (!text.empty() || !comment.empty())
        words.push_back({place, wordsOf(text, comment), marks});
}

std::vector<HistoryTable::Birth> HistoryTable::births(Timestamp raised, std::int64_t first,
                                                      std::int64_t last) {
    std::vector<Birth> found;
    if (newestBirth < raised)
        return found;
    flush();
    for (findBirths.bind(raised.nanoseconds(), first, last); findBirths.step();)
        found.push_back({findBirths.integer(0), findBirths.integer(1)});
    return found;
}

std::vector<HistoryTable::Step> HistoryTable::lifeOf(std::int64_t occurrence) {
    flush();
    std::vector<Step> steps;
    for (findLife.bind(occurrence); findLife.step();)
        steps.push_back({static_cast<HistoryChange>(findLife.integer(0)),
                         Timestamp(findLife.integer(1))});
    return steps;
}

std::vector<std::int64_t> HistoryTable::unended(std::string_view target) {
    flush();
    std::vector<std::int64_t> occurrences;
    for (findUnended.bind(target); findUnended.step();)
        occurrences.push_back(findUnended.integer(0));
    return occurrences;
}

std::optional<HistoryRow> HistoryTable::lastOf(std::int64_t occurrence) {
    std::optional<HistoryRow> last;
    if (findLast.bind(occurrence).step()) {
        last = HistoryRow{.change = HistoryChange::updated,
                          .at = Timestamp(findLast.integer(0)),
                          .occurrence = occurrence,
                          .target = std::string(findLast.text(3)),
                          .event = std::string(findLast.text(1)),
                          .severity = static_cast<std::uint32_t>(findLast.integer(4))};
        if (!findLast.isNull(2))
            last->text = std::string(findLast.text(2));
    }
    findLast.reset();
    return last;
}

void HistoryTable::wishText(std::int64_t occurrence, const EventRecordPtr& event) {
    for (findTextless.bind(occurrence); findTextless.step();)
        wishes.push_back({findTextless.integer(0), event});
}

bool HistoryTable::isRemoved(Timestamp at) const noexcept {
    return placeOf(at) <= floor;
}

std::size_t HistoryTable::removeOldest(std::size_t count, Timestamp until) {
    struct Oldest {
        std::int64_t place;
        std::string words;
        std::string marks;
    };
    std::vector<Oldest> oldest;
    for (readOldest.bind(placeOf(until), static_cast<std::int64_t>(count)); readOldest.step();) {
        const bool hasWords = !readOldest.text(1).empty() || !readOldest.text(2).empty();
        oldest.push_back({readOldest.integer(0),
                          hasWords ? wordsOf(readOldest.text(1), readOldest.text(2)) : "",
                          marksOf(readOldest.text(3), readOldest.text(4),
                                  static_cast<HistoryChange>(readOldest.integer(5)),
                                  static_cast<std::uint32_t>(readOldest.integer(6)))});
    }
    for (const Oldest& row : oldest) {
        if (!row.words.empty())
            deleteWords.bind(row.place, row.words, row.marks).run();
        deleteRow.bind(row.place).run();
    }
    if (!oldest.empty() && oldest.back().place > floor) {
        floor = oldest.back().place;
        writeMeta.bind("floor", floor).run();
    }
    return oldest.size();
}

}  // namespace hmi
