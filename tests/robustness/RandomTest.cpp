/// Whatever happens in a plant, in whatever order: afterwards the server shows what is true.
/// RANDOM_SEED and RANDOM_SECONDS choose where to begin and how long to go on, RANDOM_FAILURES
/// after how many failures to end.
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "robustness/RandomWorld.h"

using namespace bridge_test;
using namespace std::chrono_literals;

namespace {

unsigned setting(const char* name, unsigned otherwise) {
    const char* value = std::getenv(name);
    return value ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : otherwise;
}

Findings play(const RandomActions& actions, bool numbered) {
    return RandomWorld(numbered, 5000ms).play(actions);
}

/// Leaves out whatever is not needed for something to be wrong, as far as it comes in a minute.
RandomActions minimised(RandomActions actions, bool numbered) {
    const auto end = std::chrono::steady_clock::now() + 60s;
    for (std::size_t size = 0; size != actions.size();) {
        size = actions.size();
        for (std::size_t index = actions.size(); index-- > 0;) {
            RandomActions fewer = actions;
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(index));
            if (std::chrono::steady_clock::now() > end)
                return actions;
            if (!play(fewer, numbered).empty())
                actions = std::move(fewer);
        }
    }
    return actions;
}

const char* const onceWrong[] = {
    // Cleared in the instant of its raise, then confirmed away: has ended, also after a reset.
    R"([{"do": "raise", "alarm": "B", "event": 1, "timeRaised": "2025-01-01T00:00:01Z"},
        {"do": "clear", "alarm": "B", "timeCleared": "2025-01-01T00:00:01Z"},
        {"do": "Replace"}, {"do": "confirm", "alarm": "B"}, {"do": "Reset"}])",
    // Told twice, late, and with another content.
    R"([{"do": "pause", "call": "GetLoggedEvents"}, {"do": "Replace"}, {"do": "hold"},
        {"do": "raise", "alarm": "B", "event": 2, "timeRaised": "2025-01-01T00:00:01Z"},
        {"do": "raise", "alarm": "B", "event": 2, "timeRaised": "2025-01-01T00:00:01Z",
         "json": "2"},
        {"do": "clear", "alarm": "B"}, {"do": "resume"}, {"do": "AwaitImport"},
        {"do": "release"}])",
    // Raised again and ended between the two lists.
    R"([{"do": "raise", "alarm": "B", "event": 2},
        {"do": "pause", "call": "GetActiveAlarms"}, {"do": "Replace"}, {"do": "hold"},
        {"do": "raise", "alarm": "B", "event": 2, "timeRaised": "2025-01-01T00:00:01Z",
         "json": "2"},
        {"do": "clear", "alarm": "B"}, {"do": "resume"}, {"do": "AwaitImport"},
        {"do": "release"}])",
    // Another alarm of the same time has ended.
    R"([{"do": "raise", "alarm": "B", "event": 2, "timeRaised": "2025-01-01T00:00:01Z"},
        {"do": "clear", "alarm": "B"}, {"do": "Replace"},
        {"do": "raise", "alarm": "C", "event": 1, "timeRaised": "2025-01-01T00:00:01Z"}])",
    // A connection that is slow to end still keeps the ids.
    R"([{"do": "raise", "alarm": "B", "event": 1}, {"do": "Settle"},
        {"do": "delay", "call": "Disconnect", "ms": 200},
        {"do": "databaseChanged", "reason": 2}, {"do": "AwaitImport"}, {"do": "Settle"}])",
};

TEST(Random, WhatWasWrongOnceIsRightNow) {
    for (const char* const actions : onceWrong)
        for (const bool numbered : {true, false})
            EXPECT_THAT(play(parseActions(actions), numbered), testing::IsEmpty()) << actions;
}

/// Goes on with the next seed after a failure, unless it was the last one asked for.
TEST(Random, WhateverHappensTheServerShowsWhatTheLoggerHolds) {
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(setting("RANDOM_SECONDS", 20));
    unsigned mayFail = setting("RANDOM_FAILURES", 1);
    unsigned seed = setting("RANDOM_SEED", 1);
    for (; mayFail > 0 && std::chrono::steady_clock::now() < end; ++seed) {
        std::mt19937 random(seed);
        const bool numbered = random() % 2 == 0;
        const RandomActions actions = randomActions(random, numbered);
        const Findings findings = play(actions, numbered);
        if (findings.empty())
            continue;
        --mayFail;
        ADD_FAILURE() << "seed " << seed << (numbered ? "" : ", without instance numbers") << ":\n"
                      << toText(actions) << '\n'
                      << testing::PrintToString(findings);
        const RandomActions fewest = minimised(actions, numbered);
        ADD_FAILURE() << "the fewest actions:\n"
                      << toText(fewest) << '\n'
                      << testing::PrintToString(play(fewest, numbered));
    }
    std::cout << "sequences up to seed " << seed << '\n';
}

}  // namespace
