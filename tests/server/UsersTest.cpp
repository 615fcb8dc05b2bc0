#include <filesystem>
#include <fstream>
#include <random>

#include <gmock/gmock.h>

#include "server/StartError.h"
#include "server/users/AccessControl.h"
#include "server/users/Password.h"
#include "server/users/Sessions.h"
#include "server/users/SignInLimiter.h"
#include "server/users/StrangerTally.h"
#include "server/users/UserFile.h"

#ifndef _WIN32  // there are no users

namespace fs = std::filesystem;
using std::chrono::seconds;

namespace hmi {

namespace {

TEST(UserFile, IsUsedWholeOrNotAtAll) {
    const fs::path file =
        fs::temp_directory_path() / ("users-test-" + std::to_string(std::random_device()()));
    const std::string hash = hashPassword("secret");
    const auto users = [&](const std::string& entries) {
        return "{\"users\": {\n" + entries + "}}";
    };
    const auto user = [&](const std::string& name, const std::string& password,
                          const std::string& role) {
        return users("\"" + name + "\": {\"password\": \"" + password + "\",\n\"role\": \"" + role +
                     "\"}");
    };
    const std::pair<std::string, std::string> cases[] = {
        {"", "line 1, column 1"},
        {"[]", "line 1: not an object with"},
        {"{\"user\": {}}", "line 1: not an object with"},
        {users(""), "line 1: users: nobody could sign in"},
        {user("eva", "secret", "view"), "line 2: users.eva.password: not a hash"},
        {user("eva", hash.substr(0, 40), "view"), "line 2: users.eva.password: not a hash"},
        {user("eva", "$1$abc$def", "view"), "line 2: users.eva.password: not a hash"},
        {user("eva", hash, "admin"), "line 3: users.eva.role: none of view"},
        {user("eva", hash, "none"), "line 3: users.eva.role: none of view"},
        {user("", hash, "view"), "users.: a name has"},
        {user("e va", hash, "view"), "users.e va: a name has"},
        {user("e:va", hash, "view"), "users.e:va: a name has"},
        {users("\"eva\": 5"), "line 2: users.eva: not an object"},
    };
    for (const auto& [text, expected] : cases) {
        std::ofstream(file) << text;
        try {
            readUsers(file);
            ADD_FAILURE() << text;
        } catch (const StartError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(file.string() + ": "));
            EXPECT_THAT(error.what(), testing::HasSubstr(expected));
        }
    }
    std::ofstream(file) << user("eva", hash, "confirm");
    const Users read = readUsers(file);
    EXPECT_EQ(read.at("eva").role, Role::confirm);
    EXPECT_TRUE(isPassword("secret", read.at("eva").passwordHash));
    EXPECT_FALSE(isPassword("Secret", read.at("eva").passwordHash));
    fs::remove(file);
}

TEST(SignInLimiter, GuessingGetsSlowerForAddressAndName) {
    SignInLimiter limiter;
    SignInLimiter::Clock::time_point now(std::chrono::hours(1));
    const auto guess = [&](const std::string& peer, const std::string& name, int times) {
        for (; times > 0; --times)
            limiter.failed(peer, name, now);
    };
    guess("1.1.1.1", "eva", 9);
    EXPECT_EQ(limiter.wait("1.1.1.1", "eva", now), seconds(0));
    guess("1.1.1.1", "eva", 1);
    EXPECT_EQ(limiter.wait("1.1.1.1", "adam", now), seconds(60)) << "from that address";
    EXPECT_EQ(limiter.wait("2.2.2.2", "eva", now), seconds(60)) << "for that name";
    EXPECT_EQ(limiter.wait("2.2.2.2", "adam", now), seconds(0)) << "nobody else";
    for (const int wait : {120, 240, 480, 960, 1920, 3600, 3600}) {
        now += std::chrono::hours(1);
        EXPECT_EQ(limiter.wait("1.1.1.1", "eva", now), seconds(0));
        guess("1.1.1.1", "eva", 10);
        EXPECT_EQ(limiter.wait("1.1.1.1", "eva", now), seconds(wait));
    }
    for (int minute = 0; minute < 5; ++minute, now += seconds(60)) {
        guess("3.3.3.3", "tom", 9);
        EXPECT_EQ(limiter.wait("3.3.3.3", "tom", now), seconds(0)) << "nine a minute are slips";
    }
    guess("2001:db8::1", "ann", 5);
    guess("2001:db8::2", "bob", 5);
    EXPECT_GT(limiter.wait("2001:db8::3", "carl", now), seconds(0)) << "one network";
    guess("3.3.3.3", "tom", 9);
    limiter.succeeded("tom");
    guess("4.4.4.4", "tom", 1);
    EXPECT_EQ(limiter.wait("4.4.4.4", "tom", now), seconds(0));

    for (int i = 0; i < 30'000; ++i)
        limiter.failed("peer" + std::to_string(i), "name", now);
    EXPECT_GT(limiter.wait("5.5.5.5", "name", now), seconds(0)) << "a flood frees no name";
}

TEST(StrangerTally, TellsTheFirstAndTheNumberOfTheOthers) {
    StrangerTally tally;
    StrangerTally::Clock::time_point now(std::chrono::hours(1));
    const auto told = [&](const std::string& peer, const std::string& user, int times) {
        int lines = 0;
        for (; times > 0; --times)
            lines += tally.isTold(peer, user, times > 1 ? 401 : 429, now);
        return lines;
    };
    EXPECT_EQ(told("1.1.1.1", "", 1000), 5);
    EXPECT_EQ(told("2001:db8::1", "eva", 3) + told("2001:db8::2", "adam", 3), 5) << "one network";
    EXPECT_EQ(told("2.2.2.2", "eva", 9), 2) << "one name";
    EXPECT_THAT(tally.takeRests(now + seconds(59)), testing::IsEmpty());
    now += seconds(60);
    std::vector<std::string> rests;
    for (const auto& rest : tally.takeRests(now))
        rests.push_back(rest.network + " " + rest.user + " " + std::to_string(rest.count) + " " +
                        std::to_string(rest.status));
    EXPECT_THAT(rests, testing::UnorderedElementsAre("1.1.1.1  995 429", "2001:db8::  1 429",
                                                     " eva 7 429"));
    EXPECT_THAT(tally.takeRests(now), testing::IsEmpty()) << "each once";

    int lines = 0;
    for (int i = 0; i < 30'000; ++i)
        lines += told("peer" + std::to_string(i), "name" + std::to_string(i), 1);
    std::uint64_t rest = 0;
    for (const auto& more : tally.takeRests(now + seconds(60)))
        rest += more.count;
    EXPECT_LT(lines, 100) << "however many they are";
    EXPECT_EQ(static_cast<std::uint64_t>(lines) + rest, 30'000U);
}

TEST(Sessions, EndAfterTwelveHoursOrWhenToldTo) {
    Sessions sessions;
    const Sessions::Clock::time_point start(std::chrono::hours(1));
    const auto open = [&](const char* user, Sessions::Clock::time_point at) {
        return sessions.open(user, "proof", at);
    };
    const auto userOf = [&](const std::string& token, Sessions::Clock::time_point at) {
        const auto session = sessions.find(token, at);
        return session ? session->user : "";
    };
    const std::string first = open("eva", start);
    const std::string second = open("eva", start);
    EXPECT_NE(first, second);
    EXPECT_EQ(userOf(first, start + Sessions::lifetime - seconds(1)), "eva");
    EXPECT_EQ(userOf(first, start + Sessions::lifetime), "");
    sessions.close(first);
    EXPECT_EQ(userOf(first, start), "");
    EXPECT_EQ(userOf(second, start), "eva");
    EXPECT_EQ(userOf("", start), "");
    const std::string other = open("adam", start);
    for (int i = 0; i < 200; ++i)
        open("eva", start + seconds(1));
    EXPECT_EQ(userOf(second, start), "") << "the oldest of too many";
    EXPECT_EQ(userOf(other, start), "adam") << "nobody else's";
}

TEST(AccessControl, WhoWaitsForAPasswordIsAnsweredAtTheEnd) {
    const fs::path file =
        fs::temp_directory_path() / ("users-test-" + std::to_string(std::random_device()()));
    std::ofstream(file) << R"({"users": {"eva": {"role": "view", "password": ")"
                        << hashPassword("secret") << "\"}}}";
    Audit audit;
    AccessControl access(OriginPolicy({}), file, audit);
    fs::remove(file);
    Request request;
    request.host = "localhost";
    request.authorization = "Basic ZXZhOnNlY3JldA==";  // eva:secret
    std::vector<unsigned> statuses;  // on the thread that checks, and after it here
    const auto admit = [&] {
        access.admit(request, "/api/events", [&](const Request&, std::optional<Response> refusal) {
            statuses.push_back(refusal ? refusal->status : 200);
        });
    };
    constexpr std::size_t count = 20;
    for (std::size_t i = 0; i < count; ++i)
        admit();
    access.stop();
    EXPECT_EQ(statuses.size(), count);
    EXPECT_THAT(statuses, testing::Each(testing::AnyOf(200U, 503U)));
    admit();
    EXPECT_EQ(statuses.back(), 503U) << "nothing waits for what does not come";
}

}  // namespace

}  // namespace hmi

#endif
