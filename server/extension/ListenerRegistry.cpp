#include "server/extension/ListenerRegistry.h"

#include <algorithm>

namespace hmi {

using ZrHmiSrv::IZrHmiSrvListener;
using ZrHmiSrv::ListenerType;

bool ListenerRegistry::add(IZrHmiSrvListener* listener, ZrHmiSrv::Value settings) {
    if (!listener)
        return false;
    auto added =
        std::make_shared<Entry>(Entry{listener, listener->type(), std::move(settings), {}});
    Lock lock(mutex);
    for (const auto& entry : entries) {
        if (entry->type == added->type)
            return false;
    }
    entries.push_back(std::move(added));
    return true;
}

bool ListenerRegistry::remove(IZrHmiSrvListener* listener) {
    Lock lock(mutex);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i]->listener == listener) {
            removeAt(i, lock);
            return true;
        }
    }
    return false;
}

void ListenerRegistry::clear() {
    Lock lock(mutex);
    while (!entries.empty())
        removeAt(entries.size() - 1, lock);
}

void ListenerRegistry::removeAt(std::size_t index, Lock<Mutex>& lock) {
    const std::shared_ptr<Entry> removed = std::move(entries[index]);
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(index));
    const auto self = std::this_thread::get_id();
    const auto& callers = removed->callers;
    if (std::find(callers.begin(), callers.end(), self) != callers.end())
        return;
    while (!callers.empty())
        callEnded.wait(lock);
}

std::shared_ptr<ListenerRegistry::Entry> ListenerRegistry::enter(ListenerType type) {
    Lock lock(mutex);
    for (const auto& entry : entries) {
        if (entry->type == type) {
            entry->callers.push_back(std::this_thread::get_id());
            return entry;
        }
    }
    return nullptr;
}

void ListenerRegistry::leave(Entry& entry) noexcept {
    Lock lock(mutex);
    entry.callers.erase(
        std::find(entry.callers.begin(), entry.callers.end(), std::this_thread::get_id()));
    callEnded.notify_all();
}

}  // namespace hmi
