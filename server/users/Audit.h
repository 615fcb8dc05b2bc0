#pragma once

#include <functional>
#include <string>

#include "server/Log.h"
#include "server/http/Request.h"
#include "server/http/Response.h"

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
    void record(const Request& request, const Response& response) const;
    /// One that was not: its body was meant for nothing here, and may be a secret.
    void recordRefused(const Request& request, const Response& response) const;
    void record(AuditEntry entry, LogLevel level = LogLevel::info) const;

private:
    Keeper keeper;
};

}  // namespace hmi
