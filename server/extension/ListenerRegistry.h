#pragma once

#include <condition_variable>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "host/Listeners.h"
#include "platform/Mutex.h"

namespace hmi {

/// The listeners that the extension has registered, at most one of each type. They stay the
/// extension's; a listener is called only through a Call, so that it cannot go meanwhile.
class ListenerRegistry {
    struct Entry;

public:
    /// Keeps a listener registered for as long as a call of it runs; falsy when there is none.
    template <class Listener>
    class Call {
    public:
        Call(ListenerRegistry& registry, std::shared_ptr<Entry> entry) noexcept
            : registry(registry), entry(std::move(entry)) {}
        ~Call() {
            if (entry)
                registry.leave(*entry);
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

        explicit operator bool() const noexcept { return entry != nullptr; }
        Listener* operator->() const noexcept { return static_cast<Listener*>(entry->listener); }
        const ZrHmiSrv::Value& settings() const noexcept { return entry->settings; }

    private:
        ListenerRegistry& registry;
        const std::shared_ptr<Entry> entry;
    };

    /// False when it is null or another one of its type is registered.
    bool add(ZrHmiSrv::IZrHmiSrvListener* listener, ZrHmiSrv::Value settings = {});
    /// Returns when the running calls of the listener are over; at once from inside such a call.
    /// False when it is not registered.
    bool remove(ZrHmiSrv::IZrHmiSrvListener* listener);
    /// Removes all that are left.
    void clear();

    /// Listener: one of the listener interfaces.
    template <class Listener>
    Call<Listener> call() {
        return {*this, enter(typeOf(static_cast<Listener*>(nullptr)))};
    }

private:
    struct Entry {
        ZrHmiSrv::IZrHmiSrvListener* listener;
        ZrHmiSrv::ListenerType type;
        ZrHmiSrv::Value settings;
        std::vector<std::thread::id> callers;  ///< of the calls that run; guarded by the mutex
    };

    static constexpr ZrHmiSrv::ListenerType typeOf(ZrHmiSrv::IZrHmiSrvShutdownListener*) {
        return ZrHmiSrv::ListenerType::shutdown;
    }
    static constexpr ZrHmiSrv::ListenerType typeOf(ZrHmiSrv::IZrHmiSrvAlarmProviderListener*) {
        return ZrHmiSrv::ListenerType::alarm_provider;
    }
    static constexpr ZrHmiSrv::ListenerType typeOf(ZrHmiSrv::IZrHmiSrvEventLocalizationListener*) {
        return ZrHmiSrv::ListenerType::event_localization;
    }
    static constexpr ZrHmiSrv::ListenerType typeOf(ZrHmiSrv::IZrHmiSrvRequestListener*) {
        return ZrHmiSrv::ListenerType::request;
    }
    static constexpr ZrHmiSrv::ListenerType typeOf(ZrHmiSrv::IZrHmiSrvConfigListener*) {
        return ZrHmiSrv::ListenerType::configuration;
    }

    std::shared_ptr<Entry> enter(ZrHmiSrv::ListenerType type);
    void leave(Entry& entry) noexcept;
    void removeAt(std::size_t index, Lock<Mutex>& lock) REQUIRES(mutex);

    Mutex
        mutex;  ///< guards the list and the callers of its entries; short, nothing called under it
    std::condition_variable_any callEnded;
    std::vector<std::shared_ptr<Entry>> entries GUARDED_BY(mutex);
};

}  // namespace hmi
