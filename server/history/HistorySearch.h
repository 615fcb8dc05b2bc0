#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "server/history/Database.h"
#include "server/history/HistoryQuery.h"

namespace hmi {

/// One query of one connection. Throws DatabaseError.
class HistorySearch {
public:
    HistorySearch(Database& database, const HistoryQuery& query);
    HistoryPage run();

private:
    /// The next places in the list behind `after`, at most `count`.
    using Places = std::vector<std::int64_t>;
    Places next(std::int64_t after, std::size_t count);
    Places ofAll(std::int64_t after, std::size_t count);
    Places ofSeries(std::int64_t after, std::size_t count);
    Places ofWords(std::int64_t after, std::size_t count);
    Places ofOccurrence(std::int64_t after, std::size_t count);

    bool isFiltered() const;
    std::vector<std::int64_t> series();
    std::vector<HistoryChange> changes() const;
    std::string words() const;
    std::string anyOf(const std::string& beginning) const;
    bool matches(const HistoryEntry& entry) const;
    HistoryEntry entry(Statement& row, std::int64_t place) const;

    Database& database;
    const HistoryQuery& query;
    std::int64_t first;  ///< no place before this one
    std::int64_t behind;
    std::optional<std::string> match;  ///< `words` once they were wanted
};

/// What is read meanwhile is of one moment.
class Snapshot {
public:
    explicit Snapshot(Database& database) : database(database) { database.execute("BEGIN"); }
    ~Snapshot();
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

private:
    Database& database;
};

}  // namespace hmi
