#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "server/targets/Gap.h"

namespace hmi {

using GapPtr = std::shared_ptr<const Gap>;

/// The newest gaps of all target systems. Not synchronised.
class GapBook {
public:
    using Time = ZrHmiSrv::Timestamp;

    /// From the time at which all was well for the last time. A gap that lasts goes on.
    void open(const std::string& target, Time from, GapReason reason);
    void close(const std::string& target, Time to);
    void addRejected(const std::string& target, Time at, std::uint64_t count);
    /// Events that go one after another are one gap.
    void addForgotten(const std::string& target, Time event);

    /// Of one target system or all, those that touch a stretch of time, the newest first.
    std::vector<GapPtr> select(const std::optional<std::string>& target,
                               const std::optional<Time>& from,
                               const std::optional<Time>& to) const;
    /// Those that are new or others since they were taken last.
    std::vector<GapPtr> takeChanged();

private:
    using Gaps = std::deque<std::shared_ptr<Gap>>;

    void add(Gap gap);
    Gap* find(const std::string& target, GapReason reason);

    static constexpr std::size_t maxGaps = 1000;
    Gaps gaps;  ///< oldest first
    std::set<std::shared_ptr<Gap>> changed;
};

}  // namespace hmi
