/// An extension that does what a test tells it through commands and its configuration, so that
/// the server's side of the interface can be tested alone.
#include <cstdio>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <boost/config.hpp>

#include "host/IZrHmiSrvExtHost.h"

using namespace ZrHmiSrv;

namespace {

Timestamp timeOf(const Value& fields, const char* name) {
    const Value* const milliseconds = fields.lookup(name);
    return milliseconds ? Timestamp::from_milliseconds(static_cast<long long>(*milliseconds))
                        : Timestamp();
}

int numberOf(const Value& fields, const char* name) {
    const Value* const number = fields.lookup(name);
    return number ? static_cast<int>(*number) : 0;
}

template <class T>
T describe(const Value& fields) {
    T event;
    const Value* const name = fields.lookup("name");
    event.set_name(name ? name->get_text() : Text("TEST"));
    event.set_severity(static_cast<Severity>(numberOf(fields, "severity")));
    event.set_time_raised(timeOf(fields, "raised"));
    if (const Value* const target = fields.lookup("target"))
        event.parameters().insert("targetName", *target);
    if (const Value* const extra = fields.lookup("extra"))
        event.parameters().insert("extra", *extra);
    return event;
}

struct PlainAlarm : Alarm {
    Value& parameters() { return payload(); }
};

Alarm alarmOf(const Value& fields) {
    PlainAlarm alarm = describe<PlainAlarm>(fields);
    alarm.set_id(numberOf(fields, "id"));
    alarm.set_time_cleared(timeOf(fields, "cleared"));
    alarm.set_confirmation_state(
        static_cast<AlarmConfirmationState>(numberOf(fields, "confirmation")));
    return alarm;
}

Message messageOf(const Value& fields) {
    return describe<Message>(fields);
}

/// As the extension keeps events: the alarm or message is the payload.
Event storedEvent(const Value& fields) {
    Event event;
    if (fields.lookup("id"))
        event.set_payload(alarmOf(fields));
    else
        event.set_payload(messageOf(fields));
    event.set_time_received(timeOf(fields, "raised"));
    return event;
}

class TestExtension final : public IZrHmiSrvExt,
                            public IZrHmiSrvShutdownListener,
                            public IZrHmiSrvAlarmProviderListener,
                            public IZrHmiSrvEventLocalizationListener,
                            public IZrHmiSrvRequestListener,
                            public ZrHmiSrvConfigListener {
public:
    explicit TestExtension(IZrHmiSrvExtHost* host) : host(host) {}

    ~TestExtension() override {
        int registered = 0;
        for (IZrHmiSrvListener* listener : listeners())
            registered += host->unregister_listener(context, listener).succeeded() ? 1 : 0;
        std::fprintf(stderr, "destroyed with %d listeners\n", registered);
    }

    ResultPair init(const Context& given) override {
        context = given;
        Value configuration;
        host->read_configuration(configuration, context, "");
        Value settings;
        settings << Value(ValueType::structure);
        settings[std::size_t{0}].insert("flags", 48);
        settings[std::size_t{0}]["paths"] << Value("TARGET_SYSTEMS::*");
        for (IZrHmiSrvListener* listener : listeners()) {
            if (listener->type() == ListenerType::configuration)
                host->register_listener_with_settings(context, listener, settings);
            else
                host->register_listener(context, listener);
        }
        return {static_cast<ErrorValue>(numberOf(configuration, "REFUSE")), "as configured"};
    }

    String description() override { return {}; }

    ResultPair shutdown(const Context&) override {
        std::fprintf(stderr, "shut down\n");
        return ErrorValue::success;
    }

    ResultPair confirm_alarm(const Context&, const Alarm& alarm) override {
        return {static_cast<ErrorValue>(alarm.id()), alarm.name()};
    }

    ResultPair provide_events(const Context&, IEventReceiver& receiver) override {
        Value batches;
        {
            const std::lock_guard lock(mutex);
            batches = provided;
        }
        for (const Value* batch = std::as_const(batches).begin_vector();
             batch != std::as_const(batches).end_vector(); ++batch) {
            std::vector<Event> events;
            const Value& described = *batch->lookup("events");
            for (const Value* e = described.begin_vector(); e != described.end_vector(); ++e)
                events.push_back(storedEvent(*e));
            receiver.replace_events(static_cast<const char*>(*batch->lookup("target")), events);
            if (const Value* const then = batch->lookup("then"))
                call(*then);
        }
        return ErrorValue::success;
    }

    ErrorValue localize_event(Context, const char* locale, ILocalizable& item,
                              String& text) override {
        if (std::string(locale) == "xx" || item.parameters().lookup("extra"))
            return ErrorValue::request_failed;
        text.set_name(Text(std::string(locale) + ":" + item.name()));
        item.parameters().insert_or_update("eventClassName", "class");
        return ErrorValue::success;
    }

    ResultPair handle(const Context&, CommandGroup& commands) override {
        for (auto command = commands.begin_vector(); command != commands.end_vector(); ++command) {
            const std::string name = command->mapping();
            if (name == "host")
                call(command->write_value());
            else if (name == "provide")
                provide(command->write_value());
            else if (name == "unregister")
                host->unregister_listener(context, static_cast<IZrHmiSrvRequestListener*>(this));
            else if (name == "throw")
                throw std::runtime_error("as told");
            else
                command->set_extension_result(293);
            command->read_value() = command->write_value();
        }
        return ErrorValue::success;
    }

    void value_set(ResultPair& result, const Context&, const char* path) override {
        Value value;
        host->read_configuration(value, context, path);
        report("CONFIG_SET", path, value);
        if (numberOf(value, "REFUSE") != 0)
            result = {static_cast<ErrorValue>(numberOf(value, "REFUSE")), "as told"};
    }

    void value_deleted(ResultPair&, const Context&, const char* path) override {
        Value value;
        host->read_configuration(value, context, path);
        report("CONFIG_DELETED", path, value);
    }

private:
    std::vector<IZrHmiSrvListener*> listeners() {
        return {static_cast<IZrHmiSrvShutdownListener*>(this),
                static_cast<IZrHmiSrvAlarmProviderListener*>(this),
                static_cast<IZrHmiSrvEventLocalizationListener*>(this),
                static_cast<IZrHmiSrvRequestListener*>(this),
                static_cast<ZrHmiSrvConfigListener*>(this)};
    }

    void report(const char* name, const char* path, const Value& value) {
        Message message;
        message.set_name(name);
        message.set_severity(Severity::unspecified);
        message.set_time_raised(Timestamp::now());
        message.parameters().insert("0", path);
        message.parameters().insert("1", value);
        host->send_message(context, message, false);
    }

    void provide(const Value& batches) {
        const std::lock_guard lock(mutex);
        provided = batches;
    }

    void call(const Value& calls) {
        for (const Value* fields = calls.begin_vector(); fields != calls.end_vector(); ++fields) {
            const std::string slot = fields->lookup("call")->get_string();
            if (slot == "raise")
                host->apply_alarm(context, AlarmOperation::raise, alarmOf(*fields));
            else if (slot == "update")
                host->apply_alarm(context, AlarmOperation::update, alarmOf(*fields));
            else if (slot == "remove")
                host->apply_alarm(context, AlarmOperation::remove, alarmOf(*fields));
            else if (slot == "drop")
                host->drop_event(context, storedEvent(*fields));
            else if (slot == "reset")
                host->reset_events(context);
            else
                send(*fields, slot == "message");
        }
    }

    void send(const Value& fields, bool publish) {
        Message message = messageOf(fields);
        host->send_message(context, message, publish);
    }

    IZrHmiSrvExtHost* const host;
    Context context;
    std::mutex mutex;  // guards what the provider hands over
    Value provided;
};

}  // namespace

extern "C" BOOST_SYMBOL_EXPORT int ext_interface(IZrHmiSrvExtHost* host, IZrHmiSrvExt** extension,
                                                 double* version) {
    initialize_api(host);
    *extension = new (std::nothrow) TestExtension(host);
    *version = interface_version;
    return 0;
}
