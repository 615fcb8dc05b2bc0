#include "server/users/StrangerTally.h"

#include <algorithm>

#include "server/http/ClientAddress.h"

namespace hmi {

namespace {

constexpr std::chrono::minutes tallyTime{1};
constexpr unsigned maxTold = 5;
constexpr std::size_t maxTallies = 50;

}  // namespace

StrangerTally::Record& StrangerTally::recordOf(Key key, Clock::time_point now) {
    if (records.size() >= maxTallies && !records.contains(key))
        key = {};
    const auto [found, isNew] = records.try_emplace(std::move(key));
    if (isNew) {
        found->second.end = now + tallyTime;
        firstEnd = std::min(firstEnd.load(), found->second.end);
    }
    return found->second;
}

bool StrangerTally::isTold(const std::string& peer, const std::string& user, unsigned status,
                           Clock::time_point now) {
    Lock lock(mutex);
    std::vector<Record*> counted{&recordOf({networkOf(peer), {}}, now)};
    if (!user.empty())
        counted.push_back(&recordOf({{}, user}, now));
    const auto full = std::find_if(counted.begin(), counted.end(),
                                   [](const Record* record) { return record->told >= maxTold; });
    if (full == counted.end()) {
        for (Record* const record : counted)
            ++record->told;
        return true;
    }
    ++(*full)->untold;
    (*full)->status = status;
    return false;
}

std::vector<StrangerTally::Rest> StrangerTally::takeRests(Clock::time_point now) {
    std::vector<Rest> rests;
    if (now < firstEnd.load())
        return rests;
    Lock lock(mutex);
    auto next = Clock::time_point::max();
    std::erase_if(records, [&](const auto& entry) {
        const auto& [key, record] = entry;
        const bool isOver = record.end <= now;
        if (!isOver)
            next = std::min(next, record.end);
        else if (record.untold > 0)
            rests.push_back({key.first, key.second, record.untold, record.status});
        return isOver;
    });
    firstEnd = next;
    return rests;
}

}  // namespace hmi
