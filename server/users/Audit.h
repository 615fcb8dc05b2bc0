#pragma once

#include <functional>
#include <optional>
#include <string>

#include "server/http/Request.h"
#include "server/http/Response.h"

namespace hmi {

/// Something that a user changed or tried to change.
struct AuditEntry {
    std::string user;  ///< empty: nobody was asked
    std::string peer;
    std::string what;  ///< method, path, and what was sent
    unsigned status = 0;
    std::string answer;
};

/// Who did what: each change that somebody asked for is a line of the log, and goes to whoever
/// keeps a history. Any thread.
class Audit {
public:
    using Keeper = std::function<void(const AuditEntry&)>;

    /// Set before the first request.
    void setKeeper(Keeper to) { keeper = std::move(to); }

    /// Nothing for a request that changes nothing, or that is about secrets.
    static std::optional<AuditEntry> entryOf(const Request& request);
    void record(AuditEntry entry, const Response& response) const;

private:
    Keeper keeper;
};

}  // namespace hmi
