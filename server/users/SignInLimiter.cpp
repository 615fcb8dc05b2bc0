#include "server/users/SignInLimiter.h"

#include <algorithm>

#include "server/http/ClientAddress.h"

namespace hmi {

using std::chrono::seconds;

namespace {

constexpr std::size_t allowed = 10;
constexpr seconds window{60};
constexpr seconds longestBlock{3600};

std::string peerKey(const std::string& peer) {
    return "address " + networkOf(peer);
}
std::string nameKey(const std::string& name) {
    return "name " + name;
}

}  // namespace

seconds SignInLimiter::waitOf(const std::string& key, Clock::time_point now) const {
    const auto found = records.find(key);
    if (found == records.end() || found->second.blockedUntil <= now)
        return seconds(0);
    return std::chrono::ceil<seconds>(found->second.blockedUntil - now);
}

seconds SignInLimiter::wait(const std::string& peer, const std::string& name,
                            Clock::time_point now) const {
    Lock lock(mutex);
    return std::max(waitOf(peerKey(peer), now), waitOf(nameKey(name), now));
}

void SignInLimiter::failed(const std::string& peer, const std::string& name,
                           Clock::time_point now) {
    Lock lock(mutex);
    makeRoom(now);
    fail(peerKey(peer), now);
    fail(nameKey(name), now);
}

void SignInLimiter::fail(const std::string& key, Clock::time_point now) {
    Record& record = records[key];
    std::erase_if(record.failures, [&](Clock::time_point at) { return now - at >= window; });
    record.failures.push_back(now);
    if (record.failures.size() < allowed)
        return;
    record.failures.clear();
    record.blockedUntil = now + record.nextBlock;
    record.nextBlock = std::min(record.nextBlock * 2, longestBlock);
}

/// Those go that have nothing to say any more; when there are none, the whole is a flood of
/// addresses or names, and those go that are not blocked.
void SignInLimiter::makeRoom(Clock::time_point now) {
    if (records.size() < maxRecords)
        return;
    std::erase_if(records, [&](const auto& entry) {
        const Record& record = entry.second;
        return record.blockedUntil + longestBlock <= now &&
               (record.failures.empty() || now - record.failures.back() >= window);
    });
    if (records.size() >= maxRecords)
        std::erase_if(records, [&](const auto& entry) { return entry.second.blockedUntil <= now; });
    if (records.size() >= maxRecords)
        records.clear();
}

void SignInLimiter::succeeded(const std::string& name) {
    Lock lock(mutex);
    records.erase(nameKey(name));
}

}  // namespace hmi
