#include "server/history/HistorySearch.h"

#include <algorithm>
#include <functional>
#include <queue>

#include "server/history/HistoryVocabulary.h"
#include "server/history/HistoryWords.h"

namespace hmi {

using ZrHmiSrv::Timestamp;

namespace {

constexpr std::int64_t all = std::numeric_limits<std::int64_t>::max();

/// Of more rows of one microsecond than there are places the later ones lie behind it.
constexpr std::int64_t overflow = 1024 * 1024;

/// A part of what was typed: a word or, with signs between them, several.
struct Phrase {
    std::string words;
    bool isBeginning;
};

std::vector<Phrase> phrasesOf(const std::string& text) {
    std::vector<Phrase> phrases;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        std::string word = text.substr(at, end - at);
        at = end + 1;
        const bool isBeginning = word.ends_with('*');
        std::erase_if(word, [](char c) { return c == '*' || c == '"' || c == '\0'; });
        if (!word.empty())
            phrases.push_back({std::move(word), isBeginning});
    }
    return phrases;
}

std::string quote(const std::string& words) {
    return "\"" + words + "\"";
}

void addAny(std::string& words, const std::vector<std::string>& marks,
            const char* how = " AND (") {
    words += how;
    for (std::size_t i = 0; i < marks.size(); ++i)
        words.append(i == 0 ? "" : " OR ").append("marks:").append(marks[i]);
    words += ")";
}

/// By what is shown or what is not, whichever is less.
void addMarksOf(std::string& words, const std::vector<HistoryChange>& shown) {
    std::vector<std::string> marks, others;
    for (std::size_t i = 0; i < historyChangeNames.size(); ++i) {
        const auto change = static_cast<HistoryChange>(i);
        const bool isShown = std::find(shown.begin(), shown.end(), change) != shown.end();
        (isShown ? marks : others).push_back(changeMark(change));
    }
    if (marks.size() < others.size())
        addAny(words, marks);
    else if (!others.empty())
        addAny(words, others, " NOT (");
}

}  // namespace

HistorySearch::HistorySearch(Database& database, const HistoryQuery& query)
    : database(database),
      query(query),
      first(query.from ? placeOf(*query.from) : std::numeric_limits<std::int64_t>::min()),
      behind(std::min(query.after, query.to ? placeOf(*query.to) + overflow : all)) {}

HistoryPage HistorySearch::run() {
    HistoryPage page;
    Statement row(database,
                  "SELECT c.seq, c.at, s.station, s.target, s.change, s.severity, c.occurrence,"
                  " c.event, c.text, c.by, c.comment FROM change c JOIN series s ON s.id=c.series"
                  " WHERE c.place=?1");
    const std::size_t wanted = query.limit + 1;
    for (std::int64_t after = behind; page.entries.size() < wanted;) {
        const std::size_t missing = wanted - page.entries.size();
        const Places places = next(after, missing);
        for (const std::int64_t place : places) {
            if (!row.bind(place).step())
                continue;
            HistoryEntry found = entry(row, place);
            if (matches(found))
                page.entries.push_back(std::move(found));
        }
        if (places.size() < missing)
            break;
        after = places.back();
    }
    if (page.entries.size() == wanted) {
        page.entries.pop_back();
        if (!page.entries.empty())
            page.next = page.entries.back().place;
    }
    return page;
}

HistorySearch::Places HistorySearch::next(std::int64_t after, std::size_t count) {
    if (query.occurrence)
        return ofOccurrence(after, count);
    if (!query.text.empty())
        return ofWords(after, count);
    return isFiltered() ? ofSeries(after, count) : ofAll(after, count);
}

bool HistorySearch::isFiltered() const {
    return query.station || query.target || query.kind || query.change || query.severity > 0 ||
           !query.withAudit;
}

HistorySearch::Places HistorySearch::ofAll(std::int64_t after, std::size_t count) {
    Statement walk(database, "SELECT place FROM change WHERE place<?1 AND place>=?2"
                             " ORDER BY place DESC LIMIT ?3");
    Places places;
    for (walk.bind(after, first, static_cast<std::int64_t>(count)); walk.step();)
        places.push_back(walk.integer(0));
    return places;
}

/// The newest of all series that the filter stands for: of each as long as it has newer ones than
/// those that were found.
HistorySearch::Places HistorySearch::ofSeries(std::int64_t after, std::size_t count) {
    Statement walk(database, "SELECT place FROM change INDEXED BY change_of_series"
                             " WHERE series=?1 AND place<?2 AND place>=?3 ORDER BY place DESC");
    std::priority_queue<std::int64_t, Places, std::greater<>> newest;
    for (const std::int64_t each : series()) {
        const bool isFull = newest.size() == count;
        for (walk.bind(each, after, isFull ? newest.top() : first); walk.step();) {
            const std::int64_t place = walk.integer(0);
            if (newest.size() == count) {
                if (place < newest.top())
                    break;
                newest.pop();
            }
            newest.push(place);
        }
    }
    Places places;
    for (; !newest.empty(); newest.pop())
        places.push_back(newest.top());
    std::reverse(places.begin(), places.end());
    return places;
}

std::vector<std::int64_t> HistorySearch::series() {
    Statement walk(database, "SELECT id, change FROM series WHERE (?1 IS NULL OR station=?1)"
                             " AND (?2 IS NULL OR target=?2) AND severity>=?3");
    const std::vector<HistoryChange> wanted = changes();
    const auto least = static_cast<std::int64_t>(std::min(query.severity, ungraded));
    std::vector<std::int64_t> ids;
    for (walk.bind(query.station, query.target, least); walk.step();) {
        const auto change = static_cast<HistoryChange>(walk.integer(1));
        if (std::find(wanted.begin(), wanted.end(), change) != wanted.end())
            ids.push_back(walk.integer(0));
    }
    return ids;
}

std::vector<HistoryChange> HistorySearch::changes() const {
    std::vector<HistoryChange> wanted;
    for (std::size_t i = 0; i < historyChangeNames.size(); ++i) {
        const auto change = static_cast<HistoryChange>(i);
        // Gaps and audit have no severity.
        const bool isGraded = kindOf(change) != HistoryKind::gap &&
                              kindOf(change) != HistoryKind::audit;
        const bool isShown = query.withAudit || change != HistoryChange::audit;
        if ((!query.change || *query.change == change) &&
            (!query.kind || *query.kind == kindOf(change)) &&
            (query.severity == 0 || isGraded) && isShown)
            wanted.push_back(change);
    }
    return wanted;
}

HistorySearch::Places HistorySearch::ofWords(std::int64_t after, std::size_t count) {
    Places places;
    if (!match)
        match = words();
    if (match->empty())
        return places;
    Statement walk(database, "SELECT rowid FROM words WHERE words MATCH ?1 AND rowid<?2"
                             " AND rowid>=?3 ORDER BY rowid DESC LIMIT ?4");
    for (walk.bind(*match, after, first, static_cast<std::int64_t>(count)); walk.step();)
        places.push_back(walk.integer(0));
    return places;
}

/// What begins like this; empty when nothing does.
std::string HistorySearch::anyOf(const std::string& beginning) const {
    const auto known = HistoryVocabulary(database).startingWith(beginning);
    if (!known)
        return quote(beginning) + "*";
    std::string any;
    for (const std::string& words : *known)
        any.append(any.empty() ? "(" : " OR ").append(quote(words));
    return any.empty() ? any : any + ")";
}

/// Empty when nothing can match.
std::string HistorySearch::words() const {
    std::string wanted;
    for (const Phrase& phrase : phrasesOf(query.text)) {
        const std::string one = phrase.isBeginning ? anyOf(phrase.words) : quote(phrase.words);
        if (one.empty())
            return {};
        wanted.append(wanted.empty() ? "" : " AND ").append("text:").append(one);
    }
    const std::vector<HistoryChange> ofChanges = changes();
    if (wanted.empty() || ofChanges.empty())
        return {};
    if (query.station)
        addAny(wanted, {stationMark(*query.station)});
    if (query.target)
        addAny(wanted, {targetMark(*query.target)});
    addMarksOf(wanted, ofChanges);
    if (query.severity > 0) {
        std::vector<std::string> marks;
        for (auto level = std::min(query.severity, ungraded); level <= ungraded; ++level)
            marks.push_back(severityMark(level));
        addAny(wanted, marks);
    }
    return wanted;
}

HistorySearch::Places HistorySearch::ofOccurrence(std::int64_t after, std::size_t count) {
    Statement walk(database, "SELECT place FROM change WHERE occurrence=?1 AND place<?2"
                             " AND place>=?3 ORDER BY place DESC LIMIT ?4");
    Places places;
    for (walk.bind(*query.occurrence, after, first, static_cast<std::int64_t>(count));
         walk.step();)
        places.push_back(walk.integer(0));
    return places;
}

/// What the indexes do not tell exactly.
bool HistorySearch::matches(const HistoryEntry& entry) const {
    if ((query.from && entry.at < *query.from) || (query.to && *query.to < entry.at))
        return false;
    if (!query.occurrence)
        return true;
    const std::vector<HistoryChange> wanted = changes();
    return (!query.station || entry.station == *query.station) &&
           (!query.target || entry.target == *query.target) &&
           entry.severity >= std::min(query.severity, ungraded) &&
           std::find(wanted.begin(), wanted.end(), entry.change) != wanted.end();
}

HistoryEntry HistorySearch::entry(Statement& row, std::int64_t place) const {
    HistoryEntry entry;
    entry.place = place;
    entry.sequence = row.integer(0);
    entry.at = Timestamp(row.integer(1));
    entry.station = row.text(2);
    entry.target = row.text(3);
    entry.change = static_cast<HistoryChange>(row.integer(4));
    entry.severity = static_cast<std::uint32_t>(row.integer(5));
    if (!row.isNull(6))
        entry.occurrence = row.integer(6);
    entry.event = row.text(7);
    if (!row.isNull(8))
        entry.text = row.text(8);
    entry.by = row.text(9);
    entry.comment = row.text(10);
    return entry;
}

Snapshot::~Snapshot() {
    try {
        database.execute("ROLLBACK");
    } catch (const DatabaseError&) {  // it was over already
    }
}

}  // namespace hmi
