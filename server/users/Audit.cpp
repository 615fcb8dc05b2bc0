#include "server/users/Audit.h"

#include "server/Log.h"
#include "server/http/MethodName.h"
#include "server/json/Utf8.h"

namespace hmi {

namespace {

constexpr std::size_t longestText = 300;

std::string shortened(std::string_view text) {
    std::string part = toValidUtf8(text.substr(0, longestText));
    return text.size() > longestText ? part + "..." : part;
}

}  // namespace

std::optional<AuditEntry> Audit::entryOf(const Request& request) {
    const auto& path = request.target.path;
    if (request.method == Method::get || request.method == Method::other || path.size() < 2 ||
        path[0] != "api" || path[1] == "session")
        return std::nullopt;
    const bool isTrial = request.method == Method::post && path.size() == 3 && path[1] == "config";
    if (isTrial)
        return std::nullopt;
    std::string what = nameOf(request.method);
    what += ' ';
    for (const std::string& name : path)
        what.append("/").append(name);
    if (!request.body.empty())
        what.append(" ").append(request.body);
    return AuditEntry{request.user, request.peer, shortened(what), 0, {}};
}

void Audit::record(AuditEntry entry, const Response& response) const {
    entry.status = response.status;
    if (response.headers.empty())  // else it may be packed
        entry.answer = shortened(response.body);
    log(LogLevel::info, "audit: user=" + (entry.user.empty() ? "-" : entry.user) +
                            " peer=" + entry.peer + " " + entry.what + " -> " +
                            std::to_string(entry.status) + " " + entry.answer);
    if (keeper)
        keeper(entry);
}

}  // namespace hmi
