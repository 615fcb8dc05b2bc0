#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <random>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "targetsystem/ConnectedLookup.h"
#include "targetsystem/TranslationCache.h"

using namespace ZrHmiEventLogger;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Value;

namespace {

using Answer = TranslationCache::Answer;

Answer kept(const std::string& text) {
    return {{ResultPair(), text}, true};
}

TranslationKey keyOf(ULONG eventId) {
    return {TranslationKind::eventText, {{}, eventId}, 0x0409};
}

TEST(TranslationCache, TellsKeysApartAndFindsEqualOnes) {
    const auto keys = [] {
        const GUID first{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
        const GUID second{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 12}};
        const auto types = bridge_test::bytes("ab");
        const auto data = bridge_test::bytes("abc");
        return std::vector<TranslationKey>{
            {TranslationKind::eventText, {first, 1}, 0x0409},
            {TranslationKind::eventText, {first, 1}, 0x0407},
            {TranslationKind::eventText, {first, 2}, 0x0409},
            {TranslationKind::eventText, {second, 1}, 0x0409},
            {TranslationKind::eventText, {first, 1, "ab"}, 0x0409},
            {TranslationKind::eventText, {first, 1, {}, types}, 0x0409},
            {TranslationKind::eventText, {first, 1, {}, {}, types}, 0x0409},
            {TranslationKind::eventText, {first, 1, {}, types, data}, 0x0409},
            {TranslationKind::eventText, {first, 1, {}, data, types}, 0x0409},
            {TranslationKind::guidance, {first, 1}, 0x0409},
        };
    };
    TranslationCache cache;
    int asked = 0;
    for (const TranslationKey& key : keys())
        cache.get(key, [&] { return kept(std::to_string(asked++)); });
    const auto again = [] { return kept("asked again"); };
    for (int round = 0; round < 3; ++round) {
        int expected = 0;
        for (const TranslationKey& key : keys()) {
            const Translation found = cache.get(key, again);
            EXPECT_EQ(found.value, Value(std::to_string(expected++)));
            EXPECT_EQ(found.result, ErrorValue::success);
        }
    }
    EXPECT_EQ(cache.statistics().hits, 3 * keys().size());
    EXPECT_EQ(cache.statistics().misses, keys().size());
    TranslationCache other;
    EXPECT_EQ(other.get(keys()[0], again).value, Value("asked again"));
    cache.clear();
    EXPECT_EQ(cache.get(keys()[0], again).value, Value("asked again"));
}

TEST(TranslationCache, KeepsWhatWasUsedLatest) {
    constexpr std::size_t capacity = 8;
    TranslationCache cache(capacity);
    std::deque<ULONG> latestFirst;
    std::mt19937 random(7);
    for (int step = 0; step < 20'000; ++step) {
        const auto id = static_cast<ULONG>(random() % 12);
        const bool expectedToAsk = std::erase(latestFirst, id) == 0;
        latestFirst.push_front(id);
        latestFirst.resize(std::min(latestFirst.size(), capacity));
        bool asked = false;
        cache.get(keyOf(id), [&] {
            asked = true;
            return kept("text");
        });
        ASSERT_EQ(asked, expectedToAsk) << "step " << step;
        if (step % 1000 == 999) {
            cache.clear();
            latestFirst.clear();
        }
    }
}

TEST(TranslationCache, KeepsAsManyAsItMayWhateverTheyAre) {
    TranslationCache cache;
    int asked = 0;
    const auto askedFor = [&](ULONG first, ULONG count) {
        asked = 0;
        for (ULONG id = first; id < first + count; ++id)
            cache.get(keyOf(id), [&] { return ++asked, kept("text"); });
        return asked;
    };
    constexpr ULONG inUse = 4000;
    EXPECT_EQ(askedFor(0, inUse), 4000);
    EXPECT_EQ(askedFor(0, inUse), 0);
    for (int round = 0; round < 10; ++round)
        askedFor(100'000, inUse);
    EXPECT_EQ(asked, 0) << "others took their place";
    askedFor(200'000, 3 * inUse);
    EXPECT_EQ(cache.size(), TranslationCache::defaultCapacity);
    cache.clear();
    EXPECT_EQ(cache.size(), 0U);
}

/// A question on a thread of its own, which stays open until `answer`.
class OpenQuestion {
public:
    OpenQuestion(TranslationCache& cache, std::function<Answer()> outcome)
        : asking(std::async(std::launch::async, [this, &cache, outcome = std::move(outcome)] {
              return cache.get(keyOf(1), [&] {
                  begun.set_value();
                  mayAnswer.get_future().wait();
                  return outcome();
              });
          })) {
        EXPECT_EQ(begun.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready)
            << "waits for another's answer";
    }
    Translation answer() {
        mayAnswer.set_value();
        return asking.get();
    }

private:
    std::promise<void> begun;
    std::promise<void> mayAnswer;
    std::future<Translation> asking;
};

/// Threads that ask for what is being asked already, once all of them wait. What they ask
/// themselves is answered "asked 1" and so on.
std::vector<std::future<Translation>> askOnThreads(TranslationCache& cache, std::uint64_t count) {
    const auto lookUps = [&] { return cache.statistics().hits + cache.statistics().misses; };
    const auto expected = lookUps() + count;
    const auto asked = std::make_shared<std::atomic<int>>(0);
    std::vector<std::future<Translation>> answers(count);
    for (auto& answer : answers)
        answer = std::async(std::launch::async, [&cache, asked] {
            return cache.get(keyOf(1), [&] { return kept("asked " + std::to_string(++*asked)); });
        });
    while (lookUps() < expected)
        std::this_thread::yield();
    return answers;
}

TEST(TranslationCache, OneThreadAsksForAllThatMissTheSame) {
    const Answer outcomes[] = {{{ResultPair(), "text"}, true},
                               {{ResultPair(), "text"}, false},
                               {{{ErrorValue::request_failed, "text"}, "text"}, false}};
    for (const Answer& outcome : outcomes) {
        TranslationCache cache;
        OpenQuestion first(cache, [&] { return outcome; });
        auto others = askOnThreads(cache, 3);
        EXPECT_EQ(cache.get(keyOf(2), [] { return kept("other"); }).value, Value("other"))
            << "another text waits for nothing";
        first.answer();
        for (auto& other : others) {
            const Translation answer = other.get();
            EXPECT_EQ(answer.value, Value("text"));
            EXPECT_EQ(answer.result.result(), outcome.translation.result.result());
        }
        EXPECT_EQ(cache.get(keyOf(1), [] { return kept("asked again"); }).value,
                  Value(outcome.keep ? "text" : "asked again"));
    }
}

TEST(TranslationCache, AnotherThreadAsksWhenAskingThrew) {
    TranslationCache cache;
    OpenQuestion first(cache, []() -> Answer { throw std::runtime_error("no memory"); });
    auto others = askOnThreads(cache, 3);
    EXPECT_THROW(first.answer(), std::runtime_error);
    for (auto& other : others)
        EXPECT_EQ(other.get().value, Value("asked 1"));
}

TEST(TranslationCache, WhatWasAskedForBeforeClearIsNotKeptAfterIt) {
    TranslationCache cache;
    OpenQuestion before(cache, [] { return kept("old"); });
    cache.clear();
    OpenQuestion after(cache, [] { return kept("new"); });
    EXPECT_EQ(before.answer().value, Value("old"));
    auto others = askOnThreads(cache, 1);
    EXPECT_EQ(after.answer().value, Value("new"));
    EXPECT_EQ(others.front().get().value, Value("new"));
}

}  // namespace
