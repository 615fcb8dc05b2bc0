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

    /// The token of a new session. Of too many of one user the oldest ends.
    std::string open(const std::string& user, Clock::time_point now);
    std::optional<std::string> userOf(const std::string& token, Clock::time_point now) const;
    void close(const std::string& token);

private:
    struct Session {
        std::string user;
        Clock::time_point end;
    };
    static constexpr std::size_t maxOfUser = 100;

    void makeRoom(const std::string& user, Clock::time_point now) REQUIRES(mutex);

    mutable Mutex mutex;  ///< guards the sessions
    std::map<std::string, Session> sessions GUARDED_BY(mutex);  ///< by the token's fingerprint
};

}  // namespace hmi
