#include <algorithm>
#include <random>
#include <vector>

#include <gmock/gmock.h>

#include "server/events/EventMerge.h"

namespace hmi {

namespace {

EventRecordPtr eventAt(int seconds, std::uint64_t arrival) {
    ZrHmiSrv::Message message;
    message.set_time_raised(ZrHmiSrv::Timestamp(seconds * 1'000'000'000LL));
    return std::make_shared<const EventRecord>(EventContent{message, {}}, arrival);
}

}  // namespace

/// Thousands of events, in bursts of one time, against sorted lists of them.
TEST(EventSequence, MergesAsAPlainSortWould) {
    std::mt19937 random(1);
    const auto below = [&](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    };
    const auto isNewer = [](const auto& a, const auto& b) { return a->position < b->position; };
    std::vector<EventSequence> sequences(3);
    std::vector<std::vector<EventRecordPtr>> plain(3);
    for (std::uint64_t step = 1; step <= 20'000; ++step) {
        const std::size_t chosen = below(3);
        auto& list = plain[chosen];
        // Grows, shrinks to almost nothing, and grows again.
        if (list.empty() || below(10) < (step / 5'000 % 2 == 0 ? 7U : 2U)) {
            const bool isLate = below(4) == 0;
            const auto seconds = static_cast<int>(isLate ? below(step) : step) / 20;
            list.push_back(eventAt(seconds, step));
            sequences[chosen].insert(list.back());
        } else {
            const auto gone = list.begin() + static_cast<std::ptrdiff_t>(below(list.size()));
            sequences[chosen].erase(**gone);
            list.erase(gone);
        }
        if (step % 97 != 0)
            continue;
        EventMerge merge;
        std::vector<EventRecordPtr> expected;
        for (std::size_t i = 0; i < sequences.size(); ++i) {
            ASSERT_EQ(sequences[i].size(), plain[i].size()) << step;
            merge.add(i / 2, {&sequences[i], 0, sequences[i].size()});
            // The first two are of one rank.
            const auto rank = static_cast<std::ptrdiff_t>(i < 2 ? 0 : expected.size());
            expected.insert(expected.end(), plain[i].begin(), plain[i].end());
            std::sort(expected.begin() + rank, expected.end(), isNewer);
        }
        const std::size_t offset = below(expected.size() + 2);
        const auto first = static_cast<std::ptrdiff_t>(std::min(offset, expected.size()));
        expected.erase(expected.begin(), expected.begin() + first);
        expected.resize(std::min<std::size_t>(expected.size(), 300));
        ASSERT_EQ(merge.page(offset, 300), expected) << step;
    }
}

}  // namespace hmi
