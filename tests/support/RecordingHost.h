#pragma once

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
    using Context = ZrHmiSrv::Context;
    using Value = ZrHmiSrv::Value;

    explicit RecordingHost(Value configuration = {}) : configuration(std::move(configuration)) {}
    ~RecordingHost() = default;

    /// `{"TIMEOUT": 2 s, "LIMIT_EVENT_COUNT": limit, "TARGET_SYSTEMS": {}}`
    static Value configurationWithLimit(double limit);
    static void addTarget(Value& configuration, const char* name, const char* address,
                          bool enabled = true);

    ZrHmiSrv::ResultPair send_message(const Context&, ZrHmiSrv::Message& message,
                                      bool publish) override;
    ZrHmiSrv::ResultPair register_listener_with_settings(const Context&,
                                                         ZrHmiSrv::IZrHmiSrvListener* listener,
                                                         const Value& settings) override;
    ZrHmiSrv::ResultPair register_listener(const Context&,
                                           ZrHmiSrv::IZrHmiSrvListener* listener) override;
    ZrHmiSrv::ResultPair unregister_listener(const Context&,
                                             ZrHmiSrv::IZrHmiSrvListener* listener) override;
    ZrHmiSrv::ResultPair apply_alarm(const Context&, ZrHmiSrv::AlarmOperation operation,
                                     ZrHmiSrv::Alarm alarm) override;
    ZrHmiSrv::ResultPair drop_event(const Context&, ZrHmiSrv::Event event) override;
    ZrHmiSrv::ResultPair read_configuration(Value& result, const Context&,
                                            const char* path) override;
    ZrHmiSrv::ResultPair reset_events(const Context&) override;
    ZrHmiSrv::ResultPair announce(const Context&, const char* product) override;
    void replace_events(const char* target, std::span<const ZrHmiSrv::Event> events) override;

    /// True when the condition held within ten seconds. It is tried after every call of the host,
    /// with the host's lock held.
    bool waitFor(const std::function<bool()>& condition);
    /// Runs with the host's lock held.
    void look(const std::function<void()>& visit);

    void setConfiguration(const char* name, Value value);
    void setTarget(const char* name, const char* address, bool enabled);
    void removeTarget(const char* name);

    // All of it is read in `waitFor` or `look` only.
    std::vector<std::string> calls;  ///< "slot-name detail"
    std::vector<ZrHmiSrv::Message> log;
    std::map<int, ZrHmiSrv::Alarm> alarms;
    std::vector<ZrHmiSrv::Message> messages;
    std::size_t resets = 0;
    Value listenerSettings;
    std::map<ZrHmiSrv::ListenerType, ZrHmiSrv::IZrHmiSrvListener*> listeners;  ///< registered now

    std::size_t logged(std::string_view name) const;
    /// The last log entry of a name, unset when there is none.
    ZrHmiSrv::Message lastLogged(std::string_view name) const;

private:
    void note(std::string call);

    std::mutex mutex;
    std::condition_variable changed;
    Value configuration;
};

}  // namespace bridge_test
