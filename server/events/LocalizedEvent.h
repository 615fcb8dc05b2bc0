#pragma once

#include <array>
#include <memory>

#include "host/Listeners.h"
#include "server/events/EventRecord.h"

namespace hmi {

/// A private copy of an event for the extension to write texts into. Used by one thread.
class LocalizedEvent final : public ZrHmiSrv::ILocalizable {
public:
    explicit LocalizedEvent(const EventRecord& record)
        : record(record), values(record.event().payload()) {}

    Kind kind() const override {
        return record.kind == EventKind::alarm ? Kind::alarm : Kind::message;
    }
    const char* name() const override { return record.event().name().c_str(); }
    const char* domain() const override { return record.event().domain().c_str(); }
    ZrHmiSrv::Timestamp time_received() const override { return record.position.time; }
    /// An event that nobody translates shows its name.
    const char* text() const override { return name(); }
    ZrHmiSrv::Value& parameters() override { return values; }

private:
    const EventRecord& record;
    ZrHmiSrv::Value values;
};

/// The texts of an event in one locale.
struct EventTexts {
    ZrHmiSrv::ErrorValue result = ZrHmiSrv::ErrorValue::success;  ///< no texts unless success
    ZrHmiSrv::Text text;
    ZrHmiSrv::Value parameters;  ///< those of `localizedParameters` that there are
};
using TextsPtr = std::shared_ptr<const EventTexts>;

/// What localization adds to an event's parameters.
inline constexpr std::array localizedParameters{"eventClassName", "localizedSourceName",
                                                "causeRemedy", "details"};

}  // namespace hmi
