#include "simulator/runtime/SinkList.h"

#include <utility>

namespace ZrSimulator {

DWORD SinkList::add(ZrAtlCom::ComPtr<IDispatch> sink) {
    Lock lock(mutex);
    sinks.emplace(++lastCookie, std::move(sink));
    return lastCookie;
}

bool SinkList::remove(DWORD cookie) {
    ZrAtlCom::ComPtr<IDispatch> removed;  // released after the lock
    Lock lock(mutex);
    const auto found = sinks.find(cookie);
    if (found == sinks.end())
        return false;
    removed = std::move(found->second);
    sinks.erase(found);
    while (running == cookie && runner != std::this_thread::get_id())
        ended.wait(lock);
    return true;
}

void SinkList::deliver(const Notification& notification) {
    for (const DWORD cookie : cookies()) {
        // A sink may be gone when its call returns: nothing of it is touched after that.
        if (IDispatch* sink = begin(cookie)) {
            notification.deliverTo(*sink);
            end();
        }
    }
}

IDispatch* SinkList::begin(DWORD cookie) {
    Lock lock(mutex);
    while (running != 0)
        ended.wait(lock);
    const auto found = sinks.find(cookie);
    if (found == sinks.end())
        return nullptr;
    running = cookie;
    runner = std::this_thread::get_id();
    return found->second.get();
}

void SinkList::end() {
    {
        Lock lock(mutex);
        running = 0;
    }
    ended.notify_all();
}

boost::container::small_vector<DWORD, 4> SinkList::cookies() {
    Lock lock(mutex);
    boost::container::small_vector<DWORD, 4> all;
    for (const auto& entry : sinks)
        all.push_back(entry.first);
    return all;
}

}  // namespace ZrSimulator
