#pragma once

#include <functional>
#include <string>

#include "server/Log.h"
#include "server/http/Request.h"
#include "server/http/Response.h"
#include "server/users/StrangerTally.h"

namespace hmi {

/// Something that a user changed or tried to change.
struct AuditEntry {
    std::string user;  ///< empty: nobody was asked; of a refused sign-in the name that was given
    std::string peer;
    std::string what;  ///< method, path, and what was sent
    unsigned status = 0;
    std::string answer;
};

/// Who did what: each change that somebody asked for is a line of the log, and goes to whoever
/// keeps a history. What others have sent is quoted in the line. Any thread.
class Audit {
public:
    using Keeper = std::function<void(const AuditEntry&)>;

    /// Set before the first request.
    void setKeeper(Keeper to) { keeper = std::move(to); }

    /// A request that was served, with its body; nothing when it changes nothing, is about secrets,
    /// or its handler has told more exactly.
    void record(const Request& request, const Response& response);
    /// One that was not: its body was meant for nothing here, and may be a secret.
    void recordRefused(const Request& request, const Response& response);
    /// Of somebody who has not signed in: after the first ones only their number.
    void recordStranger(AuditEntry entry, LogLevel level);
    /// Those numbers, as far as their minute is over by then.
    void recordRests(StrangerTally::Clock::time_point now = StrangerTally::Clock::now());
    void record(AuditEntry entry, LogLevel level = LogLevel::info) const;

private:
    Keeper keeper;
    StrangerTally strangers;
};

}  // namespace hmi
