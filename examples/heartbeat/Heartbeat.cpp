/// Watches over something that sends the command "Beat" while it is alive. When none has come for
/// the configured TIMEOUT an alarm is raised; the next one clears it, an operator confirms it.
#include <chrono>
#include <exception>
#include <host/IZrHmiSrvExtHost.h>
#include <host/Threading.h>
#include <mutex>
#include <string_view>

using namespace ZrHmiSrv;

namespace {

constexpr const char* alarmName = "NO_HEARTBEAT";
constexpr const char* targetName = "Heartbeat";

class Heartbeat final : public IZrHmiSrvExt,
                        public IZrHmiSrvShutdownListener,
                        public IZrHmiSrvAlarmProviderListener,
                        public IZrHmiSrvEventLocalizationListener,
                        public IZrHmiSrvRequestListener {
public:
    explicit Heartbeat(IZrHmiSrvExtHost* host) : host(host) {}

    /// After it the host has nothing left that leads here.
    ~Heartbeat() override {
        for (IZrHmiSrvListener* const listener : listeners)
            host->unregister_listener(context, listener);
    }

    ResultPair init(const Context& given) override try {
        context = given;
        Value timeout;
        host->read_configuration(timeout, context, "TIMEOUT");
        if (timeout.type() != ValueType::timespan)
            return {ErrorValue::invalid_configuration, "TIMEOUT is missing"};
        patience = std::chrono::nanoseconds(timeout.get_timespan().nanoseconds());
        for (IZrHmiSrvListener* const listener : listeners)
            host->register_listener(context, listener);
        watch.schedule_periodic(50, context, [this](TimerError error, const Context&) {
            if (error == TimerError::none)
                look();
        });
        return host->announce(context, "Heartbeat");
    } catch (const std::exception& error) {
        return {ErrorValue::initialization_failed, error.what()};
    }

    String description() override { return {}; }

    ResultPair shutdown(const Context&) override {
        return watch.stop(1000) ? ErrorValue::success : ErrorValue::operation_failed;
    }

    ResultPair handle(const Context&, CommandGroup& commands) override try {
        for (auto command = commands.begin_vector(); command != commands.end_vector(); ++command) {
            if (std::string_view(command->mapping()) == "Beat")
                beat();
            else
                command->set_extension_result(static_cast<unsigned>(ErrorValue::unknown_command));
        }
        return ErrorValue::success;
    } catch (const std::exception&) {
        return ErrorValue::operation_failed;
    }

    ResultPair confirm_alarm(const Context&, const Alarm& confirmed) override try {
        const std::lock_guard lock(mutex);
        if (!alarm.isset() || confirmed.id() != alarm.id())
            return {ErrorValue::request_failed, "there is no such alarm"};
        alarm.set_time_confirmed(Timestamp::now());
        alarm.set_confirmation_state(AlarmConfirmationState::confirmed);
        return host->apply_alarm(context, AlarmOperation::update, alarm);
    } catch (const std::exception&) {
        return ErrorValue::operation_failed;
    }

    ResultPair provide_events(const Context&, IEventReceiver& receiver) override try {
        const std::lock_guard lock(mutex);
        const Event& last = alarm;
        receiver.replace_events(targetName, {&last, alarm.isset() ? 1U : 0U});
        return ErrorValue::success;
    } catch (const std::exception&) {
        return ErrorValue::operation_failed;
    }

    ErrorValue localize_event(Context, const char* locale, ILocalizable& item,
                              String& text) override try {
        if (std::string_view(item.name()) != alarmName)
            return ErrorValue::unsupported_item;
        text.set_name(std::string_view(locale).starts_with("de") ? "Kein Puls" : "No pulse");
        return ErrorValue::success;
    } catch (const std::exception&) {
        return ErrorValue::operation_failed;
    }

private:
    using Clock = std::chrono::steady_clock;
    void beat() {
        const std::lock_guard lock(mutex);
        last = Clock::now();
        if (!alarm.is_active())
            return;
        alarm.set_time_cleared(Timestamp::now());
        host->apply_alarm(context, AlarmOperation::update, alarm);
    }

    void look() {
        const std::lock_guard lock(mutex);
        if (Clock::now() - last < patience || alarm.is_active())
            return;
        if (alarm.isset())
            host->drop_event(context, alarm);
        const int id = alarm.id() + 1;
        alarm = Alarm();
        alarm.set_id(id);
        alarm.set_name(alarmName);
        alarm.set_domain(context.domain());
        alarm.set_severity(Severity::error);
        alarm.set_time_raised(Timestamp::now());
        alarm.set_confirmation_state(AlarmConfirmationState::pending);
        alarm.payload()["targetName"] = targetName;
        host->apply_alarm(context, AlarmOperation::raise, alarm);
    }

    IZrHmiSrvExtHost* const host;
    Context context;
    std::chrono::nanoseconds patience{};
    std::mutex mutex;  ///< guards what follows; the host hears of changes in their order
    Clock::time_point last = Clock::now();
    Alarm alarm;  ///< the last one; not set before the first
    IZrHmiSrvListener* const listeners[4] = {static_cast<IZrHmiSrvShutdownListener*>(this),
                                             static_cast<IZrHmiSrvAlarmProviderListener*>(this),
                                             static_cast<IZrHmiSrvEventLocalizationListener*>(this),
                                             static_cast<IZrHmiSrvRequestListener*>(this)};
    Threading watch{1};  ///< the last member: its thread ends before the others do
};

}  // namespace

ZRHMISRV_ENTRY int ext_interface(IZrHmiSrvExtHost* host, IZrHmiSrvExt** extension,
                                 double* version) try {
    initialize_api(host);
    *version = interface_version;
    *extension = new Heartbeat(host);
    return 0;
} catch (const std::exception&) {
    return 1;
}
