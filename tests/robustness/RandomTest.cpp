/// Whatever happens in a plant, in whatever order: afterwards the server shows what is true.
/// RANDOM_SEED and RANDOM_SECONDS choose where to begin and how long to go on.
#include <cstdlib>
#include <iostream>

#include <boost/json/parse.hpp>
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

/// Leaves out whatever is not needed for something to be wrong.
RandomActions minimised(RandomActions actions, bool numbered) {
    for (std::size_t size = 0; size != actions.size();) {
        size = actions.size();
        for (std::size_t index = actions.size(); index-- > 0;) {
            RandomActions fewer = actions;
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(index));
            if (!play(fewer, numbered).empty())
                actions = std::move(fewer);
        }
    }
    return actions;
}

/// The actions that RANDOM_ACTIONS holds, as a failure has printed them.
TEST(Random, WhatWentWrongOnceIsRightNow) {
    const char* const text = std::getenv("RANDOM_ACTIONS");
    if (!text)
        GTEST_SKIP();
    RandomActions actions;
    const boost::json::value document = boost::json::parse(text);
    for (const auto& action : document.as_array())
        actions.push_back(action.as_object());
    for (const bool numbered : {true, false})
        EXPECT_THAT(play(actions, numbered), testing::IsEmpty()) << numbered;
}

TEST(Random, WhateverHappensTheServerShowsWhatTheLoggerHolds) {
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(setting("RANDOM_SECONDS", 20));
    unsigned failed = 0;
    unsigned seed = setting("RANDOM_SEED", 1);
    for (; std::chrono::steady_clock::now() < end && failed < setting("RANDOM_FAILURES", 1);
         ++seed) {
        std::mt19937 random(seed);
        const bool numbered = random() % 2 == 0;
        const RandomActions actions = randomActions(random, numbered);
        const Findings first = play(actions, numbered);
        if (first.empty())
            continue;
        ++failed;
        const RandomActions fewest = minimised(actions, numbered);
        const Findings last = play(fewest, numbered);
        ADD_FAILURE() << "seed " << seed << (numbered ? "" : ", without instance numbers") << ":\n"
                      << toText(actions) << '\n'
                      << testing::PrintToString(first) << "\nthe fewest actions:\n"
                      << toText(fewest) << '\n'
                      << testing::PrintToString(last);
    }
    std::cout << "sequences up to seed " << seed << '\n';
}

}  // namespace
