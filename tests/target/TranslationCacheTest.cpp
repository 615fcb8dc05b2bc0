#include <algorithm>
#include <chrono>
#include <deque>
#include <random>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "target/ConnectedLookup.h"
#include "target/TranslationCache.h"

using namespace ZrHmiEventLogger;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;

namespace {

using Answer = TranslationCache::Answer;

Answer kept(const char* text) {
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
        cache.get(key, [&] { return kept(std::to_string(asked++).c_str()); });
    int expected = 0;
    for (const TranslationKey& key : keys()) {
        const Translation found = cache.get(key, [&] { return kept("asked again"); });
        EXPECT_EQ(found.value.get_string(), std::to_string(expected++));
        EXPECT_EQ(found.result, ErrorValue::success);
    }
    EXPECT_EQ(cache.statistics().hits, keys().size());
    EXPECT_EQ(cache.statistics().misses, keys().size());
}

TEST(TranslationCache, KeepsWhatWasUsedLatest) {
    constexpr std::size_t capacity = 8;
    TranslationCache cache(capacity);
    std::deque<ULONG> latestFirst;
    std::mt19937 random(7);
    for (int step = 0; step < 20'000; ++step) {
        const auto id = static_cast<ULONG>(random() % 12);
        const auto used = std::find(latestFirst.begin(), latestFirst.end(), id);
        const bool expectedToAsk = used == latestFirst.end();
        if (!expectedToAsk)
            latestFirst.erase(used);
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

/// A question on a thread of its own, which stays open until `answer`. A destroyed one is answered.
class OpenQuestion {
public:
    OpenQuestion(TranslationCache& cache, std::function<Answer()> outcome)
        : thread([this, &cache, outcome = std::move(outcome)] {
              try {
                  translation = cache.get(keyOf(1), [&] {
                      begun.set_value();
                      mayAnswer.get_future().wait();
                      return outcome();
                  });
              } catch (const std::exception& exception) {
                  translation.result = {ErrorValue::request_failed, exception.what()};
              }
          }) {
        EXPECT_EQ(begun.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready)
            << "waits for another's answer";
    }
    ~OpenQuestion() {
        if (thread.joinable())
            answer();
    }
    Translation answer() {
        mayAnswer.set_value();
        thread.join();
        return translation;
    }

private:
    std::promise<void> begun;
    std::promise<void> mayAnswer;
    Translation translation;
    std::thread thread;
};

std::uint64_t lookUps(const TranslationCache& cache) {
    return cache.statistics().hits + cache.statistics().misses;
}

/// Threads that ask for what is being asked already, once all of them wait.
class Waiting {
public:
    Waiting(TranslationCache& cache, std::size_t count) : answers(count) {
        const auto before = lookUps(cache);
        for (Translation& answer : answers)
            threads.emplace_back([this, &cache, &answer] {
                answer = cache.get(keyOf(1), [this] {
                    ++asked;
                    return kept("asked again");
                });
            });
        while (lookUps(cache) < before + count)
            std::this_thread::yield();
    }
    ~Waiting() { join(); }
    const std::vector<Translation>& join() {
        for (std::thread& thread : std::exchange(threads, {}))
            thread.join();
        return answers;
    }

    std::atomic<int> asked = 0;

private:
    std::vector<Translation> answers;
    std::vector<std::thread> threads;
};

TEST(TranslationCache, OneThreadAsksForAllThatMissTheSame) {
    const Answer outcomes[] = {{{ResultPair(), "text"}, true},
                               {{ResultPair(), "text"}, false},
                               {{{ErrorValue::request_failed, "text"}, "text"}, false}};
    for (const Answer& outcome : outcomes) {
        TranslationCache cache;
        OpenQuestion first(cache, [&] { return outcome; });
        Waiting others(cache, 3);
        EXPECT_EQ(cache.get(keyOf(2), [] { return kept("other"); }).value.get_string(), "other")
            << "another text waits for nothing";
        first.answer();
        for (const Translation& answer : others.join()) {
            EXPECT_EQ(answer.value.get_string(), "text");
            EXPECT_EQ(answer.result.result(), outcome.translation.result.result());
        }
        EXPECT_EQ(others.asked, 0);
        EXPECT_EQ(cache.get(keyOf(1), [] { return kept("asked again"); }).value.get_string(),
                  outcome.keep ? "text" : "asked again");
    }
}

TEST(TranslationCache, AnotherThreadAsksWhenAskingThrew) {
    TranslationCache cache;
    OpenQuestion first(cache, []() -> Answer { throw std::runtime_error("no memory"); });
    Waiting others(cache, 3);
    EXPECT_EQ(first.answer().result.text().view(), "no memory");
    for (const Translation& answer : others.join())
        EXPECT_EQ(answer.value.get_string(), "asked again");
    EXPECT_EQ(others.asked, 1);
}

TEST(TranslationCache, WhatWasAskedForBeforeClearIsNotKeptAfterIt) {
    TranslationCache cache;
    OpenQuestion before(cache, [] { return kept("old"); });
    cache.clear();
    OpenQuestion after(cache, [] { return kept("new"); });
    EXPECT_EQ(before.answer().value.get_string(), "old");
    Waiting others(cache, 1);
    EXPECT_EQ(after.answer().value.get_string(), "new");
    EXPECT_EQ(others.join().front().value.get_string(), "new");
    EXPECT_EQ(others.asked, 0);
}

}  // namespace
