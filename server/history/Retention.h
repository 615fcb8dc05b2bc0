#pragma once

#include <cstdint>

#include "server/history/HistoryTable.h"

namespace hmi {

/// Removes the oldest rows, a few at a time, so that the writer never waits long.
class Retention {
public:
    struct Limits {
        std::int64_t days = 90;
        std::int64_t bytes = std::int64_t{4096} << 20;
    };

    Retention(Database& database, HistoryTable& table, Limits limits)
        : database(database), table(table), limits(limits) {}

    /// One step; answers how many rows it removed. Throws DatabaseError.
    std::size_t step();
    /// Bytes in use; what is free within the file does not count.
    std::int64_t used();

private:
    Database& database;
    HistoryTable& table;
    const Limits limits;
};

}  // namespace hmi
