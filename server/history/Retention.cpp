#include "server/history/Retention.h"

#include <limits>

namespace hmi {

namespace {

constexpr std::size_t removedAtOnce = 500;
/// Pages that stay free for what comes next.
constexpr std::int64_t freePages = 1000;

}  // namespace

std::int64_t Retention::used() {
    return (database.number("PRAGMA page_count") - database.number("PRAGMA freelist_count")) *
           database.number("PRAGMA page_size");
}

std::size_t Retention::step() {
    using ZrHmiSrv::Timestamp;
    constexpr std::int64_t day = 86'400'000'000'000;
    const bool isTooLarge = used() > limits.bytes;
    const Timestamp until(isTooLarge ? std::numeric_limits<std::int64_t>::max()
                                     : Timestamp::now().nanoseconds() - limits.days * day);
    Transaction transaction(database);
    table.begin();
    const std::size_t removed = table.removeOldest(removedAtOnce, until);
    transaction.commit();
    if (removed == 0 && database.number("PRAGMA freelist_count") > freePages)
        database.execute("PRAGMA incremental_vacuum(500)");
    return removed;
}

}  // namespace hmi
