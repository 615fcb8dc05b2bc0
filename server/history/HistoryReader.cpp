#include "server/history/HistoryReader.h"

#include <chrono>
#include <utility>

#include "server/history/HistorySearch.h"

namespace hmi {

namespace {

constexpr std::chrono::seconds longestSearch{10};

}  // namespace

HistoryReader::HistoryReader(std::filesystem::path path, Generation ofFile, Suspect tell)
    : file(std::move(path)), generation(std::move(ofFile)), suspect(std::move(tell)) {}

HistoryPage HistoryReader::read(const HistoryQuery& query) {
    const std::uint64_t asked = generation();
    try {
        Idle reader = take();
        reader.database->setDeadline(std::chrono::steady_clock::now() + longestSearch);
        HistoryPage page;
        {
            // All of a page is of one moment.
            Snapshot snapshot(*reader.database);
            page = HistorySearch(*reader.database, query).run();
        }
        giveBack(std::move(reader));
        return page;
    } catch (const DatabaseError& error) {
        if (error.isBroken())
            suspect(asked);
        if (error.isOverdue())
            throw HistoryUnreadable("the search takes too long: ask for less", true);
        throw HistoryUnreadable(std::string("the history cannot be read: ") + error.what(), false);
    }
}

HistoryReader::Idle HistoryReader::take() {
    const std::uint64_t current = generation();
    std::vector<Idle> old;  // closed with no lock held
    Lock lock(mutex);
    while (!idle.empty()) {
        Idle reader = std::move(idle.back());
        idle.pop_back();
        if (reader.generation == current)
            return reader;
        old.push_back(std::move(reader));
    }
    lock.unlock();
    auto opened = std::make_unique<Database>(file, Database::Access::read);
    opened->execute("PRAGMA cache_size = -16384; PRAGMA mmap_size = 1073741824;");
    return {std::move(opened), current};
}

void HistoryReader::giveBack(Idle used) {
    Lock lock(mutex);
    if (idle.size() < maxIdle)
        idle.push_back(std::move(used));
}

}  // namespace hmi
