#include "server/users/AccessControl.h"

#include <algorithm>

#include <boost/asio/post.hpp>

#include "server/Log.h"
#include "server/StartError.h"
#include "server/json/ParseJson.h"
#include "server/json/Utf8.h"
#include "server/users/Password.h"

namespace hmi {

namespace json = boost::json;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::string_view cookieName = "hmi-session=";
constexpr std::string_view basic = "basic ";
constexpr std::size_t maxWaiting = 64;
constexpr std::size_t maxRemembered = 1000;
constexpr const char* serverStops = "the server is stopping";
constexpr auto memoryTime = std::chrono::minutes(5);

std::string tokenOf(std::string_view cookies) {
    while (!cookies.empty()) {
        const auto end = std::min(cookies.find(';'), cookies.size());
        std::string_view cookie = cookies.substr(0, end);
        cookie.remove_prefix(std::min(cookie.find_first_not_of(' '), cookie.size()));
        if (cookie.starts_with(cookieName))
            return std::string(cookie.substr(cookieName.size()));
        cookies.remove_prefix(std::min(end + 1, cookies.size()));
    }
    return {};
}

bool isSignIn(const Request& request) {
    return request.method == Method::post && request.target.path.size() == 2 &&
           request.target.path[0] == "api" && request.target.path[1] == "session";
}

Response unauthorized(const Request& request, std::string_view text) {
    Response response = Response::error(401, text);
    if (!request.fromPage)  // a browser would ask with a window of its own
        response.headers.emplace_back("WWW-Authenticate", "Basic realm=\"hmi-server\"");
    return response;
}

Response wrongPassword(const Request& request) {
    return unauthorized(request, "wrong name or password");
}

Response tooMany(std::chrono::seconds wait) {
    Response response = Response::error(429, "too many wrong passwords; wait " +
                                                 std::to_string(wait.count()) + " seconds");
    response.headers.emplace_back("Retry-After", std::to_string(wait.count()));
    return response;
}

/// Stands for one password of one user, and tells nothing about it.
std::string fingerprintOf(const std::string& user, const std::string& password,
                          const std::string& proof) {
    return fingerprint(user + '\0' + password + '\0' + proof);
}

}  // namespace

AccessControl::AccessControl(OriginPolicy given, std::filesystem::path file, Audit& to)
    : policy(std::move(given)), userFile(std::move(file)), audit(to) {
    if (hasUsers())
        users = std::make_shared<const Users>(readUsers(userFile));
}

void AccessControl::stop() {
    {
        Lock lock(mutex);
        stopped = true;
    }
    verifier.join();
}

void AccessControl::reload() {
    if (!hasUsers())
        return;
    try {
        auto read = std::make_shared<const Users>(readUsers(userFile));
        Lock lock(mutex);
        users.swap(read);
    } catch (const StartError& error) {
        return log(LogLevel::error, std::string("the users stay as they were: ") + error.what());
    }
    log(LogLevel::info, "the users were read again");
}

std::shared_ptr<const Users> AccessControl::currentUsers() const {
    Lock lock(mutex);
    return users;
}

std::optional<User> AccessControl::userOf(const std::string& name) const {
    const auto known = currentUsers();
    const auto found = known ? known->find(name) : Users::const_iterator();
    return known && found != known->end() ? std::optional(found->second) : std::nullopt;
}

Role AccessControl::roleOf(const std::string& user) const {
    if (!hasUsers())
        return Role::engineer;
    const auto known = userOf(user);
    return known ? known->role : Role::none;
}

void AccessControl::admit(Request request, std::string_view target, Decided decided) {
    try {
        request.target = Target::parse(target);
        if (!request.target.authority.empty())
            request.host = request.target.authority;
        if (!policy.allows(request))
            throw RequestError(403, "not for pages of another origin");
        if (!hasUsers())
            return decided(std::move(request), std::nullopt);
        if (auto credentials = credentialsOf(request))
            return admitWith(std::move(*credentials), std::move(request), std::move(decided));
    } catch (const RequestError& error) {
        return decided(std::move(request), Response::error(error.status, error.what()));
    }
    const std::string token = tokenOf(request.cookie);
    request.user = sessionUserOf(token);
    decide(std::move(request), decided);
}

/// Those that a request brings with it; throws RequestError for a sign-in without.
std::optional<AccessControl::Credentials> AccessControl::credentialsOf(const Request& request) {
    if (isSignIn(request)) {
        try {
            const json::value body = parseJson(request.body);
            return Credentials{std::string(body.at("user").as_string()),
                               std::string(body.at("password").as_string())};
        } catch (const std::exception&) {  // nothing of it in an answer or in the log
            throw RequestError(400, "to sign in takes the texts \"user\" and \"password\"");
        }
    }
    const std::string_view header = request.authorization;
    if (toLowerAscii(header.substr(0, basic.size())) != basic)
        return std::nullopt;
    const std::string pair = decodeBase64(header.substr(basic.size()));
    const auto colon = pair.find(':');
    if (colon == std::string::npos || !isUtf8(pair))
        throw RequestError(400, "malformed authorization");
    return Credentials{pair.substr(0, colon), pair.substr(colon + 1)};
}

AccessControl::Admission AccessControl::admissionOf(const Request& admitted) const {
    Admission admission{admitted.user, {}, userOf(admitted.user)};
    const std::string token = tokenOf(admitted.cookie);
    if (!token.empty() && sessionUserOf(token) == admitted.user)
        admission.token = token;
    return admission;
}

bool AccessControl::holds(const Admission& admission) const {
    if (!hasUsers())
        return true;
    return admission.as && userOf(admission.user) == admission.as &&
           (admission.token.empty() ||
            sessionUserOf(admission.token) == admission.user);
}

void AccessControl::admitWith(Credentials credentials, Request request, Decided decided) {
    if (credentials.user.size() > longestUserName) {  // nobody's
        Response refusal = wrongPassword(request);
        return refuseSignIn(std::move(request), credentials.user, std::move(refusal), decided);
    }
    if (!isSignIn(request) && isRemembered(fingerprintOf(credentials.user, credentials.password,
                                                         proofOf(credentials.user)))) {
        request.user = credentials.user;
        return decide(std::move(request), decided);
    }
    if (const char* const reason = queueUp())
        return decided(std::move(request), Response::error(503, reason));
    boost::asio::post(verifier, [this, credentials = std::move(credentials),
                                 request = std::make_shared<Request>(std::move(request)),
                                 decided = std::move(decided)] {
        try {
            if (isStopped())
                decided(std::move(*request), Response::error(503, serverStops));
            else
                verify(credentials, std::move(*request), decided);
        } catch (const std::exception& error) {  // its connection ends without an answer
            log(LogLevel::error, std::string("a password could not be checked: ") + error.what());
        }
        Lock lock(mutex);
        --waiting;
    });
}

/// Answers why not.
const char* AccessControl::queueUp() {
    Lock lock(mutex);
    if (stopped)
        return serverStops;
    if (waiting >= maxWaiting)
        return "too many sign in at once";
    ++waiting;
    return nullptr;
}

bool AccessControl::isStopped() const {
    Lock lock(mutex);
    return stopped;
}

void AccessControl::verify(const Credentials& credentials, Request request,
                           const Decided& decided) {
    const auto now = Clock::now();
    const auto wait = limiter.wait(request.peer, credentials.user, now);
    if (wait.count() > 0)
        return refuseSignIn(std::move(request), credentials.user, tooMany(wait), decided);
    // A name that nobody has takes as long as one that somebody has.
    static const std::string nobody = hashPassword(randomToken());
    const auto known = currentUsers();
    const auto user = known->find(credentials.user);
    const bool exists = user != known->end();
    const std::string& hash = exists ? user->second.passwordHash : nobody;
    if (!isPassword(credentials.password, hash) || !exists) {
        limiter.failed(request.peer, credentials.user, now);
        Response refusal = wrongPassword(request);
        return refuseSignIn(std::move(request), credentials.user, std::move(refusal), decided);
    }
    limiter.succeeded(credentials.user);
    request.user = credentials.user;
    request.proof = fingerprint(hash);
    remember(fingerprintOf(credentials.user, credentials.password, request.proof));
    decide(std::move(request), decided);
}

void AccessControl::refuseSignIn(Request request, const std::string& user, Response refusal,
                                 const Decided& decided) const {
    audit.recordStranger({user.substr(0, longestUserName), request.peer, "sign-in", refusal.status,
                          refusal.body},
                         LogLevel::warning);
    decided(std::move(request), std::move(refusal));
}

void AccessControl::decide(Request request, const Decided& decided) const {
    const Role needed = neededRole(request.method, request.target);
    if (roleOf(request.user) >= needed)
        return decided(std::move(request), std::nullopt);
    Response refusal = request.user.empty()
                           ? unauthorized(request, "sign in first")
                           : Response::error(403, "this takes the role " +
                                                      std::string(nameOf(needed)));
    decided(std::move(request), std::move(refusal));
}

std::string AccessControl::sessionUserOf(const std::string& token) const {
    const auto session = sessions.find(token, Clock::now());
    return session && session->proof == proofOf(session->user) ? session->user : std::string();
}

/// Of the password that a user has now; empty when there is no such user.
std::string AccessControl::proofOf(const std::string& user) const {
    const auto known = userOf(user);
    return known ? fingerprint(known->passwordHash) : std::string();
}

bool AccessControl::isRemembered(const std::string& key) const {
    Lock lock(mutex);
    const auto found = remembered.find(key);
    return found != remembered.end() && found->second > Clock::now();
}

void AccessControl::remember(const std::string& key) {
    const auto now = Clock::now();
    Lock lock(mutex);
    if (remembered.size() >= maxRemembered)
        std::erase_if(remembered, [&](const auto& entry) { return entry.second <= now; });
    if (remembered.size() < maxRemembered)
        remembered[key] = now + memoryTime;
}

std::string AccessControl::openSession(const Request& admitted) {
    return std::string(cookieName) + sessions.open(admitted.user, admitted.proof, Clock::now());
}

void AccessControl::closeSession(const std::string& cookie) {
    if (const std::string token = tokenOf(cookie); !token.empty())
        sessions.close(token);
}

}  // namespace hmi
