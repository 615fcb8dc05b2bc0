/// An extension that does what a test tells it through commands and its configuration, so that
/// the server's side of the interface can be tested alone.
#include <cstdio>
#include <map>
#include <new>
#include <stdexcept>
#include <string>

#include <boost/config.hpp>

#include "host/IZrHmiSrvExtHost.h"

using namespace ZrHmiSrv;

namespace {

int numberOf(const Value& fields, const char* name) {
    const Value* const number = fields.lookup(name);
    return number ? static_cast<int>(*number) : 0;
}

Timestamp timeOf(const Value& fields, const char* name) {
    const int milliseconds = numberOf(fields, name);
    return milliseconds ? Timestamp::from_milliseconds(milliseconds) : Timestamp();
}

template <class T>
T describe(const Value& fields) {
    T event;
    if (const Value* const name = fields.lookup("name"))
        event.set_name(name->get_text());
    event.set_severity(static_cast<Severity>(numberOf(fields, "severity")));
    event.set_time_raised(timeOf(fields, "raised"));
    for (const char* parameter : {"targetName", "extra"}) {
        if (const Value* const value = fields.lookup(parameter))
            event.payload().insert(parameter, *value);
    }
    return event;
}

Alarm alarmOf(const Value& fields) {
    Alarm alarm = describe<Alarm>(fields);
    alarm.set_id(numberOf(fields, "id"));
    alarm.set_time_cleared(timeOf(fields, "cleared"));
    alarm.set_confirmation_state(
        static_cast<AlarmConfirmationState>(numberOf(fields, "confirmation")));
    return alarm;
}

class TestExtension final : public IZrHmiSrvExt,
                            public IZrHmiSrvShutdownListener,
                            public IZrHmiSrvRequestListener {
public:
    explicit TestExtension(IZrHmiSrvExtHost* host) : host(host) {}

    ~TestExtension() override {
        const bool registered = host->unregister_listener(context, asShutdown).succeeded() ||
                                host->unregister_listener(context, asRequest).succeeded();
        std::fprintf(stderr, "destroyed %s listeners\n", registered ? "with" : "without");
    }

    ResultPair init(const Context& given) override {
        context = given;
        host->register_listener(context, asShutdown);
        host->register_listener(context, asRequest);
        Value refusal;
        host->read_configuration(refusal, context, "REFUSE");
        return {refusal.isset() ? static_cast<ErrorValue>(static_cast<int>(refusal))
                                : ErrorValue::success,
                "as configured"};
    }

    String description() override { return {}; }

    ResultPair shutdown(const Context&) override {
        std::fprintf(stderr, "shut down\n");
        return ErrorValue::success;
    }

    ResultPair handle(const Context&, CommandGroup& commands) override {
        for (auto command = commands.begin_vector(); command != commands.end_vector(); ++command) {
            const std::string name = command->mapping();
            const Value& input = command->write_value();
            if (name == "unregister")
                host->unregister_listener(context, asRequest);
            else if (name == "throw")
                throw std::runtime_error("as told");
            else if (name == "echo")
                command->set_extension_result(293);
            for (auto fields = input.begin_vector();
                 name == "host" && fields != input.end_vector(); ++fields)
                call(*fields);
            command->read_value() = input;
        }
        return ErrorValue::success;
    }

private:
    void call(const Value& fields) {
        static const std::map<std::string, AlarmOperation> operations{
            {"raise", AlarmOperation::raise},
            {"update", AlarmOperation::update},
            {"remove", AlarmOperation::remove}};
        const std::string name = fields.lookup("do")->get_string();
        if (const auto found = operations.find(name); found != operations.end()) {
            host->apply_alarm(context, found->second, alarmOf(fields));
        } else if (name == "drop") {
            host->drop_event(context, alarmOf(fields));
        } else {
            Message message = describe<Message>(fields);
            host->send_message(context, message, name == "message");
        }
    }

    IZrHmiSrvExtHost* const host;
    IZrHmiSrvShutdownListener* const asShutdown = this;
    IZrHmiSrvRequestListener* const asRequest = this;
    Context context;
};

}  // namespace

extern "C" BOOST_SYMBOL_EXPORT int ext_interface(IZrHmiSrvExtHost* host, IZrHmiSrvExt** extension,
                                                 double* version) {
    initialize_api(host);
    *extension = new (std::nothrow) TestExtension(host);
    *version = interface_version;
    return 0;
}
