#include "server/targets/GapBook.h"

#include <algorithm>
#include <utility>

namespace hmi {

void GapBook::open(const std::string& target, Time from, GapReason reason) {
    for (const auto& gap : gaps) {
        if (gap->target == target && !gap->to.isset())
            return;
    }
    add({target, from, {}, reason});
}

void GapBook::close(const std::string& target, Time to) {
    for (const auto& gap : gaps) {
        if (gap->target != target || gap->to.isset())
            continue;
        gap->to = to;
        changed.insert(gap);
    }
}

void GapBook::addRejected(const std::string& target, Time at, std::uint64_t count) {
    add({target, at, at, GapReason::rejected, count});
}

void GapBook::addForgotten(const std::string& target, Time event) {
    const auto held = std::find_if(gaps.rbegin(), gaps.rend(), [&](const auto& gap) {
        return gap->target == target && gap->reason == GapReason::forgotten;
    });
    if (held == gaps.rend())
        return add({target, event, event, GapReason::forgotten, 1});
    Gap& gap = **held;
    gap.from = std::min(gap.from, event);
    gap.to = std::max(gap.to, event);
    gap.lost = *gap.lost + 1;
    changed.insert(*held);
}

void GapBook::add(Gap gap) {
    if (gaps.size() == maxGaps) {
        changed.erase(gaps.front());
        gaps.pop_front();
    }
    gaps.push_back(std::make_shared<Gap>(std::move(gap)));
    changed.insert(gaps.back());
}

std::vector<GapPtr> GapBook::select(const std::optional<std::string>& target,
                                    const std::optional<Time>& from,
                                    const std::optional<Time>& to) const {
    std::vector<GapPtr> selected;
    for (const auto& gap : gaps) {
        if ((target && gap->target != *target) || (to && *to < gap->from) ||
            (from && gap->to.isset() && gap->to < *from))
            continue;
        selected.push_back(std::make_shared<const Gap>(*gap));
    }
    std::stable_sort(selected.begin(), selected.end(),
                     [](const GapPtr& a, const GapPtr& b) { return b->from < a->from; });
    return selected;
}

std::vector<GapPtr> GapBook::takeChanged() {
    std::vector<GapPtr> taken;
    for (const auto& gap : std::exchange(changed, {}))
        taken.push_back(std::make_shared<const Gap>(*gap));
    return taken;
}

}  // namespace hmi
