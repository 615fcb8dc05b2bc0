#include "server/users/Audit.h"

#include <boost/json/serialize.hpp>

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

bool isChange(const Request& request) {
    const auto& path = request.target.path;
    const bool isTrial = request.method == Method::post && path.size() == 3 && path[1] == "config";
    return request.method != Method::get && request.method != Method::other && path.size() >= 2 &&
           path[0] == "api" && path[1] != "session" && !isTrial;
}

std::string whatOf(const Request& request, std::string_view body) {
    std::string what = nameOf(request.method);
    what += ' ';
    for (const std::string& name : request.target.path)
        what.append("/").append(name);
    if (!body.empty())
        what.append(" ").append(body.substr(0, longestText));
    return what;
}

/// Nothing in it looks like another part of the line.
std::string inQuotes(std::string_view text) {
    return boost::json::serialize(boost::json::string_view(text.data(), text.size()));
}

}  // namespace

void Audit::record(const Request& request, const Response& response) {
    recordRests();
    if (isChange(request) && !response.audited)
        record({request.user, request.peer, whatOf(request, request.body), response.status,
                response.body});
}

void Audit::recordRefused(const Request& request, const Response& response) {
    if (!isChange(request))
        return;
    AuditEntry entry{request.user, request.peer, whatOf(request, {}), response.status,
                     response.body};
    if (request.user.empty())
        recordStranger(std::move(entry), LogLevel::info);
    else
        record(std::move(entry));
}

void Audit::recordStranger(AuditEntry entry, LogLevel level) {
    const auto now = StrangerTally::Clock::now();
    recordRests(now);
    if (strangers.isTold(entry.peer, entry.user, entry.status, now))
        record(std::move(entry), level);
}

void Audit::recordRests(StrangerTally::Clock::time_point now) {
    for (const StrangerTally::Rest& rest : strangers.takeRests(now))
        record({rest.user, rest.network.empty() ? "-" : rest.network,
                std::to_string(rest.count) + " more refused", rest.status,
                "within a minute, of those who have not signed in"},
               LogLevel::warning);
}

void Audit::record(AuditEntry entry, LogLevel level) const {
    entry.what = shortened(entry.what);
    entry.answer = shortened(entry.answer);
    log(level, "audit: user=" + (entry.user.empty() ? "-" : inQuotes(entry.user)) +
                   " peer=" + entry.peer + " " + inQuotes(entry.what) + " -> " +
                   std::to_string(entry.status) + " " + inQuotes(entry.answer));
    if (keeper)
        keeper(entry);
}

}  // namespace hmi
