/// From the event logger's objects to the host's events. A failing proxy call throws
/// ZrAtlCom::CAtlException, a target that is over Abandoned; the half-filled event is then to be
/// discarded. Any thread.
#pragma once

#include <cstdint>

#include "events/EventContext.h"
#include "host/Event.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

using ZrEventLoggerFnxProxyLib::IZrAlarm;
using ZrEventLoggerFnxProxyLib::IZrEvent;
using ZrEventLoggerFnxProxyLib::IZrLoggedEvent;
using ZrEventLoggerFnxProxyLib::IZrMessage;

/// An unknown severity becomes `info`.
ZrHmiSrv::Severity mapSeverity(std::uint32_t severity);
/// An unknown state becomes `none`.
ZrHmiSrv::AlarmConfirmationState mapConfirmationState(std::uint32_t state);

/// With `keepId` the id that the alarm already has stays.
void toHostAlarm(ZrHmiSrv::Alarm& alarm, IZrAlarm& source, const EventContext& context,
                 std::int32_t hostId, bool keepId);

void toHostMessage(ZrHmiSrv::Message& message, IZrMessage& source, const EventContext& context);

/// An alarm, a message, or nothing when the entry is neither.
ZrHmiSrv::Value toHostPayload(IZrLoggedEvent& source, const EventContext& context,
                              std::int32_t hostId);

/// The event that carries this alarm or message, with its name, domain and time.
ZrHmiSrv::Event eventOf(ZrHmiSrv::Value payload);

}  // namespace ZrHmiEventLogger
