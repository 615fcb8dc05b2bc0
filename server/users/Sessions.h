#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include "platform/Mutex.h"

namespace hmi {

/// Who has signed in, by the token in their cookie. They end after twelve hours, and with the
/// process. Thread-safe.
class Sessions {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::hours lifetime{12};

    struct Session {
        std::string user;
        std::string proof;  ///< fingerprint of the password's hash by which it was opened
        Clock::time_point end;
    };

    /// The token of a new session. Of too many of one user the oldest ends.
    std::string open(const std::string& user, const std::string& proof, Clock::time_point now);
    std::optional<Session> find(const std::string& token, Clock::time_point now) const;
    void close(const std::string& token);

private:
    static constexpr std::size_t maxOfUser = 100;

    void makeRoom(const std::string& user, Clock::time_point now) REQUIRES(mutex);

    mutable Mutex mutex;  ///< guards the sessions
    std::map<std::string, Session> sessions GUARDED_BY(mutex);  ///< by the token's fingerprint
};

}  // namespace hmi
