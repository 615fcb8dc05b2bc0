#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <string>

#include "server/events/Change.h"

namespace hmi {

/// One that wants to know what changes. It works off what it is told on a thread of its own.
class IChangeListener {
public:
    /// Called as `IChangeSink::post` is. False when there is no room for the change, which is then
    /// lost to this listener.
    virtual bool post(const Change& change) noexcept = 0;

protected:
    ~IChangeListener() = default;
};

/// The one feed of changes: what the books tell it, it tells all listeners, and counts what each of
/// them loses. Any thread.
class ChangeFeed final : public IChangeSink {
public:
    struct Listener {
        Listener(std::string name, IChangeListener& to) : name(std::move(name)), to(to) {}
        const std::string name;
        IChangeListener& to;
        std::atomic<std::uint64_t> lost = 0;
    };

    /// Before the first change. The listener outlives the last one.
    void add(std::string name, IChangeListener& listener) {
        listeners.emplace_back(std::move(name), listener);
    }
    void post(Change change) noexcept override {
        for (Listener& listener : listeners) {
            if (!listener.to.post(change))
                ++listener.lost;
        }
    }
    const std::deque<Listener>& all() const noexcept { return listeners; }

private:
    std::deque<Listener> listeners;  // constant once changes come
};

}  // namespace hmi
