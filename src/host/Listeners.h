/// What an extension implements: the extension object and the listeners that it registers.
/// The host calls them on threads of its own, possibly at the same time. No exception may leave.
#pragma once

#include <cstdint>
#include <span>

#include "host/Command.h"
#include "host/Context.h"
#include "host/Event.h"
#include "host/Result.h"

namespace ZrHmiSrv {

class ZRHMISRV_API IZrHmiSrvExt {
public:
    virtual ResultPair init(const Context& context) = 0;
    virtual String description() = 0;
    virtual ~IZrHmiSrvExt();
};

enum class ListenerType : std::uint16_t {
    shutdown = 1,
    alarm_provider = 2,
    event_localization = 3,
    request = 4,
    configuration = 5,
};

class ZRHMISRV_API IZrHmiSrvListener {
public:
    virtual ListenerType type() const noexcept = 0;
    virtual ~IZrHmiSrvListener();
};

class ZRHMISRV_API IZrHmiSrvShutdownListener : public IZrHmiSrvListener {
public:
    ListenerType type() const noexcept final;
    virtual ResultPair shutdown(const Context& context) = 0;
};

/// Takes the events that exist, one target system a call.
class ZRHMISRV_API IEventReceiver {
public:
    /// Replaces in one step all events that the receiver holds of this target system. Oldest
    /// first; the span is valid during the call. Called with locks of the extension held: it
    /// must not call back into the extension.
    virtual void replace_events(const char* target_name, std::span<const Event> events) = 0;

protected:
    ~IEventReceiver() = default;
};

class ZRHMISRV_API IZrHmiSrvAlarmProviderListener : public IZrHmiSrvListener {
public:
    ListenerType type() const noexcept final;
    /// An operator confirms an alarm.
    virtual ResultPair confirm_alarm(const Context& context, const Alarm& alarm) = 0;
    /// Hands over the events of every target system in turn.
    virtual ResultPair provide_events(const Context& context, IEventReceiver& receiver) = 0;
};

/// An event that is to be localized: its keys are read from it and the texts written into it.
class ZRHMISRV_API ILocalizable {
public:
    enum class Kind : std::uint16_t { alarm = 65, message = 66 };

    virtual Kind kind() const = 0;
    virtual const char* name() const = 0;
    virtual const char* domain() const = 0;
    virtual Timestamp time_received() const = 0;
    virtual const char* text() const = 0;
    virtual Value& parameters() = 0;

protected:
    ~ILocalizable() = default;
};

class ZRHMISRV_API IZrHmiSrvEventLocalizationListener : public IZrHmiSrvListener {
public:
    ListenerType type() const noexcept final;
    /// On failure neither the item nor the text is changed.
    virtual ErrorValue localize_event(Context context, const char* locale, ILocalizable& item,
                                      String& localized_text) = 0;
};

class ZRHMISRV_API IZrHmiSrvRequestListener : public IZrHmiSrvListener {
public:
    ListenerType type() const noexcept final;
    virtual ResultPair handle(const Context& context, CommandGroup& commands) = 0;
};

/// Told of changes below the watched paths. Names of a path are separated by "::".
class ZRHMISRV_API IZrHmiSrvConfigListener : public IZrHmiSrvListener {
public:
    ListenerType type() const noexcept final;
    virtual void value_read(ResultPair& result, const Context& context, const char* path) = 0;
    virtual void value_about_to_be_set(ResultPair& result, const Context& context,
                                       const char* path) = 0;
    virtual void value_about_to_be_deleted(ResultPair& result, const Context& context,
                                           const char* path) = 0;
    virtual void value_set(ResultPair& result, const Context& context, const char* path) = 0;
    virtual void value_deleted(ResultPair& result, const Context& context, const char* path) = 0;
    virtual void value_renamed(ResultPair& result, const Context& context, const char* path) = 0;
};

/// Accepts every change.
class ZRHMISRV_API ZrHmiSrvConfigListener : public IZrHmiSrvConfigListener {
public:
    void value_read(ResultPair& result, const Context& context, const char* path) override;
    void value_about_to_be_set(ResultPair& result, const Context& context,
                               const char* path) override;
    void value_about_to_be_deleted(ResultPair& result, const Context& context,
                                   const char* path) override;
    void value_set(ResultPair& result, const Context& context, const char* path) override;
    void value_deleted(ResultPair& result, const Context& context, const char* path) override;
    void value_renamed(ResultPair& result, const Context& context, const char* path) override;
};

}  // namespace ZrHmiSrv
