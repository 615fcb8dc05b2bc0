#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <boost/asio/thread_pool.hpp>

#include "platform/Mutex.h"
#include "server/http/OriginPolicy.h"
#include "server/http/Request.h"
#include "server/http/Response.h"
#include "server/users/Audit.h"
#include "server/users/Sessions.h"
#include "server/users/SignInLimiter.h"
#include "server/users/UserFile.h"

namespace hmi {

/// Stands before every request: whom it is for, who makes it, and whether they may. Without a file
/// of users everybody may do everything. Thread-safe.
class AccessControl {
public:
    /// An empty path: no users. Throws StartError.
    AccessControl(OriginPolicy policy, std::filesystem::path userFile, Audit& audit);
    ~AccessControl() { stop(); }
    /// No password is checked any more: who waits for it is refused. Returns when that is done.
    void stop();

    using Decided = std::function<void(Request request, std::optional<Response> refusal)>;
    /// Decodes the target, names the user and decides. Checks of passwords take their time on a
    /// thread of their own; all else is decided before this returns.
    void admit(Request request, std::string_view target, Decided decided);

    /// Who was admitted, and as what.
    struct Admission {
        std::string user;
        std::string token;  ///< of the session; empty without one
        std::optional<User> as;
    };
    Admission admissionOf(const Request& admitted) const;
    /// False when the session is over, or the user is not what they were any more.
    bool holds(const Admission& admission) const;

    bool hasUsers() const noexcept { return !userFile.empty(); }
    Role roleOf(const std::string& user) const;
    /// Reads the file again; one that cannot be used changes nothing, and is told in the log.
    void reload();

    /// The cookie of a session of the user who was admitted; it lasts as long as his password.
    std::string openSession(const Request& admitted);
    void closeSession(const std::string& cookie);

private:
    struct Credentials {
        std::string user;
        std::string password;
    };
    static std::optional<Credentials> credentialsOf(const Request& request);

    void admitWith(Credentials credentials, Request request, Decided decided);
    const char* queueUp();
    bool isStopped() const;
    void verify(const Credentials& credentials, Request request, const Decided& decided);
    void refuseSignIn(Request request, const std::string& user, Response refusal,
                      const Decided& decided) const;
    /// Decides for a request whose user is known by now, or not at all.
    void decide(Request request, const Decided& decided) const;
    std::shared_ptr<const Users> currentUsers() const;
    std::optional<User> userOf(const std::string& name) const;
    /// Of the session that still holds; empty when there is none.
    std::string sessionUserOf(const std::string& token) const;
    std::string proofOf(const std::string& user) const;
    bool isRemembered(const std::string& key) const;
    void remember(const std::string& key);

    const OriginPolicy policy;
    const std::filesystem::path userFile;
    Audit& audit;
    Sessions sessions;
    SignInLimiter limiter;

    mutable Mutex mutex;  ///< guards what follows; nothing is called under it
    std::shared_ptr<const Users> users GUARDED_BY(mutex);
    /// Passwords found right a short time ago, by fingerprint of them and of the hash that they
    /// were checked against, and when they are checked again.
    std::map<std::string, std::chrono::steady_clock::time_point> remembered GUARDED_BY(mutex);
    bool stopped GUARDED_BY(mutex) = false;
    std::size_t waiting GUARDED_BY(mutex) = 0;  ///< for their password to be checked

    boost::asio::thread_pool verifier{1};  ///< one: each check takes 64 MiB and a processor
};

}  // namespace hmi
