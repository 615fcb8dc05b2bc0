#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "host/IZrHmiSrvExtHost.h"

namespace bridge_test {

/// A host that keeps what it is told: every call as a line, and the events as an operator would
/// see them. Any thread; `waitFor` blocks until a condition on it holds.
class RecordingHost final : public ZrHmiSrv::IZrHmiSrvExtHost, public ZrHmiSrv::IEventReceiver {
public:
    using Alarm = ZrHmiSrv::Alarm;
    using Context = ZrHmiSrv::Context;
    using Listener = ZrHmiSrv::IZrHmiSrvListener;
    using Message = ZrHmiSrv::Message;
    using ResultPair = ZrHmiSrv::ResultPair;
    using Value = ZrHmiSrv::Value;
    struct Target {
        const char* name;
        const char* address;
        bool enabled = true;
    };

    explicit RecordingHost(Value configuration = {}) : configuration(std::move(configuration)) {}
    ~RecordingHost() = default;

    /// With a time-out of 2 s and a limit of 100 events.
    static Value configurationFor(const std::vector<Target>& targets);
    /// Runs inside the slot, after the call has been noted and with no lock held. Set it before
    /// there are calls.
    std::function<void(const std::string& call)> insideSlot = [](const std::string&) {};

    ResultPair send_message(const Context&, Message& message, bool publish) override;
    ResultPair register_listener_with_settings(const Context&, Listener* listener,
                                               const Value& settings) override;
    ResultPair register_listener(const Context&, Listener* listener) override;
    ResultPair unregister_listener(const Context&, Listener* listener) override;
    ResultPair apply_alarm(const Context&, ZrHmiSrv::AlarmOperation operation,
                           Alarm alarm) override;
    ResultPair drop_event(const Context&, ZrHmiSrv::Event event) override;
    ResultPair read_configuration(Value& result, const Context&, const char* name) override;
    ResultPair reset_events(const Context&) override {
        look([&] {
            if (refusedResets > 0 && refusedResets--)
                throw std::bad_alloc();
            note("reset");
        });
        insideSlot("reset");
        return {};
    }
    ResultPair announce(const Context&, const char* product) override {
        std::lock_guard lock(mutex);
        return note(std::string("announce ") + product);
    }
    void replace_events(const char* target, std::span<const ZrHmiSrv::Event> events) override;

    /// True when the condition held within ten seconds. It is tried after every call of the host,
    /// with the host's lock held.
    bool waitFor(const std::function<bool()>& condition) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(10), condition);
    }
    /// Runs with the host's lock held.
    void look(const std::function<void()>& visit) {
        std::lock_guard lock(mutex);
        visit();
    }

    // All of it is read in `waitFor` or `look` only.
    std::vector<std::string> calls;  ///< "slot-name detail"
    std::vector<Message> log;
    std::map<int, Alarm> alarms;
    std::vector<Message> messages;
    Value listenerSettings;
    Value configuration;                                    ///< may be changed there
    int refusedResets = 0;                                  ///< that many fail; may be changed
    std::map<ZrHmiSrv::ListenerType, Listener*> listeners;  ///< registered now

    std::size_t logged(std::string_view name) const;
    std::size_t count(std::string_view call) const {
        return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), call));
    }
    /// The last log entry of a name, unset when there is none.
    Message lastLogged(std::string_view name) const;

private:
    ResultPair note(const std::string& call);

    std::mutex mutex;
    std::condition_variable changed;
};

}  // namespace bridge_test
