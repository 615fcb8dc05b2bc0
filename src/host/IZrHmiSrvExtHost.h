/// The way in: what an extension gets from the server, and the order in which things happen.
///
/// 1. The server loads the library and calls `ext_interface`, which makes the extension object. The
///    server owns it from then on and deletes it at the end.
/// 2. `init`, once. The context that it is given is the one for later calls of the host: keep a
///    copy. The extension reads its configuration and registers its listeners, which may be called
///    before `init` returns. A result other than success ends the server.
/// 3. Listeners are called, and the extension calls the host. It raises, updates and removes alarms
///    under ids of its own choice, one of each at a time; they name their target system in the
///    parameter "targetName". The host asks `provide_events` for all of them when it starts, and
///    again after `reset_events`. A removed alarm stays in the operators' list until `drop_event`.
/// 4. The shutdown listener, once, on any thread, even while `init` runs. It unregisters all
///    listeners, itself included. Then the destructor. The library stays loaded.
#pragma once

#include <cstdint>

#include "host/Listeners.h"

namespace ZrHmiSrv {

/// What an extension tells of an alarm. Each carries the whole alarm as it is now.
enum class AlarmOperation : std::uint16_t {
    raise = 0,   ///< a new one, or the next occurrence of the one with this id
    update = 1,  ///< also when it was cleared or confirmed
    remove = 2,  ///< its life has ended; the server still shows it as it was last
};

/// The server as its extensions see it: 20 slots in this order. Any thread, also during `init`
/// and configuration changes; a slot never waits for a thread that may be inside the extension.
class ZRHMISRV_API IZrHmiSrvExtHost {
public:
    virtual ResultPair reserved_0() { return ErrorValue::unknown_command; }
    /// Slot 1. `publish` false: an entry of the server's log; true: an event for the clients.
    virtual ResultPair send_message(const Context& context, Message& message, bool publish) = 0;
    virtual ResultPair reserved_2() { return ErrorValue::unknown_command; }
    virtual ResultPair reserved_3() { return ErrorValue::unknown_command; }
    virtual ResultPair reserved_4() { return ErrorValue::unknown_command; }
    virtual ResultPair reserved_5() { return ErrorValue::unknown_command; }
    virtual ResultPair reserved_6() { return ErrorValue::unknown_command; }
    virtual ResultPair reserved_7() { return ErrorValue::unknown_command; }
    virtual ResultPair reserved_8() { return ErrorValue::unknown_command; }
    /// Slot 9. The listener stays the extension's. An object that is several listeners registers
    /// each of them, as a pointer to that interface. `settings` are of a configuration listener:
    /// a vector of maps with "paths", a vector of the paths that it is told of ("A::*": all below
    /// A), and "flags", of what.
    virtual ResultPair register_listener_with_settings(const Context& context,
                                                       IZrHmiSrvListener* listener,
                                                       const Value& settings) = 0;
    virtual ResultPair reserved_10() { return ErrorValue::unknown_command; }
    /// Slot 11.
    virtual ResultPair register_listener(const Context& context, IZrHmiSrvListener* listener) = 0;
    /// Slot 12. Returns when the listener's running calls are over, except from inside one.
    virtual ResultPair unregister_listener(const Context& context, IZrHmiSrvListener* listener) = 0;
    /// Slot 13. An operation on an id that the server does not hold is ignored.
    virtual ResultPair apply_alarm(const Context& context, AlarmOperation operation,
                                   Alarm alarm) = 0;
    /// Slot 14. The extension no longer keeps this event.
    virtual ResultPair drop_event(const Context& context, Event event) = 0;
    virtual ResultPair reserved_15() { return ErrorValue::unknown_command; }
    /// Slot 16. The empty path is the extension's whole configuration.
    virtual ResultPair read_configuration(Value& result, const Context& context,
                                          const char* path) = 0;
    /// Slot 17. The events that the server holds of the extension are stale: ask the alarm
    /// provider again.
    virtual ResultPair reset_events(const Context& context) = 0;
    /// Slot 18. The extension's name as people read it.
    virtual ResultPair announce(const Context& context, const char* product) = 0;
    virtual ResultPair reserved_19() { return ErrorValue::unknown_command; }

protected:
    ~IZrHmiSrvExtHost() = default;
};

/// Call once, with the host, before anything else of this library.
ZRHMISRV_API void initialize_api(IZrHmiSrvExtHost* host);

/// The version of the extension interface that these headers describe.
inline constexpr double interface_version = 22.0;

/// The one export of an extension library, under the name "ext_interface". Sets the extension and
/// `interface_version`, and returns 0; anything else, as no extension, says that there is none.
using ExtInterface = int (*)(IZrHmiSrvExtHost* host, IZrHmiSrvExt** extension, double* version);

}  // namespace ZrHmiSrv
