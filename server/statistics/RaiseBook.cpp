#include "server/statistics/RaiseBook.h"

#include <algorithm>
#include <exception>

namespace hmi {

using ZrHmiSrv::Timestamp;

bool RaiseBook::post(const Change& change) noexcept try {
    if (change.type == ChangeType::raised)
        add(*change.event, Timestamp::now());
    return true;
} catch (const std::exception&) {
    return false;
}

void RaiseBook::add(const EventRecord& alarm, Timestamp now) {
    Lock lock(mutex);
    const KindPtr kind = kindOf(alarm);
    raises.push_back({now, kind, alarm.id.number});
    ++kind->raises;
    flood.add(now);
    if (floods.contains(alarm.target) || floods.size() < maxTargets)
        floods[alarm.target].add(now);
    while (raises.size() > capacity)
        forgetOldest();
}

RaiseBook::KindPtr RaiseBook::kindOf(const EventRecord& alarm) {
    const auto known = kinds.find(EventOriginView(alarm));
    return known != kinds.end()
               ? *known
               : *kinds.insert(std::make_shared<Kind>(Kind{originOf(alarm)})).first;
}

void RaiseBook::forgetOldest() {
    const Entry oldest = std::move(raises.front());
    raises.pop_front();
    since = std::max(since, oldest.at);
    if (--oldest.kind->raises == 0)
        kinds.erase(oldest.kind);
}

RaiseBook::Excerpt RaiseBook::select(Timestamp from) const {
    Excerpt excerpt;
    {
        Lock lock(mutex);
        excerpt.since = since;
        for (const Entry& entry : raises) {
            if (!(entry.at < from))
                excerpt.raises.push_back(
                    {entry.at, EventOriginPtr(entry.kind, &entry.kind->origin), entry.alarm});
        }
    }
    // The clock may have been set back meanwhile.
    std::stable_sort(excerpt.raises.begin(), excerpt.raises.end(),
                     [](const Raise& a, const Raise& b) { return a.at < b.at; });
    return excerpt;
}

bool RaiseBook::isFlooded(const std::string& target, Timestamp now) const {
    Lock lock(mutex);
    const auto found = floods.find(target);
    return found != floods.end() && found->second.isOn(now);
}

bool RaiseBook::isFlooded(Timestamp now) const {
    Lock lock(mutex);
    return flood.isOn(now);
}

}  // namespace hmi
