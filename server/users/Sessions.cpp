#include "server/users/Sessions.h"

#include <algorithm>

#include "server/users/Password.h"

namespace hmi {

std::string Sessions::open(const std::string& user, const std::string& proof,
                           Clock::time_point now) {
    std::string token = randomToken();
    Lock lock(mutex);
    makeRoom(user, now);
    sessions.emplace(fingerprint(token), Session{user, proof, now + lifetime});
    return token;
}

void Sessions::makeRoom(const std::string& user, Clock::time_point now) {
    std::erase_if(sessions, [&](const auto& entry) { return entry.second.end <= now; });
    std::size_t count = 0;
    auto oldest = sessions.end();
    for (auto entry = sessions.begin(); entry != sessions.end(); ++entry) {
        if (entry->second.user != user)
            continue;
        ++count;
        if (oldest == sessions.end() || entry->second.end < oldest->second.end)
            oldest = entry;
    }
    if (count >= maxOfUser)
        sessions.erase(oldest);
}

std::optional<Sessions::Session> Sessions::find(const std::string& token,
                                                Clock::time_point now) const {
    // By the fingerprint: how long the look-up takes tells nothing about other tokens.
    const std::string key = fingerprint(token);
    Lock lock(mutex);
    const auto found = sessions.find(key);
    if (found == sessions.end() || found->second.end <= now)
        return std::nullopt;
    return found->second;
}

void Sessions::close(const std::string& token) {
    const std::string key = fingerprint(token);
    Lock lock(mutex);
    sessions.erase(key);
}

}  // namespace hmi
