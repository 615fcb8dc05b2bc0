/// The target system as the receiver of its logger's notifications.
#include <array>
#include <stdexcept>
#include <string>

#include "events/Abandoned.h"
#include "targetsystem/TargetSystem.h"
#include "targetsystem/proxy/CatchToHresult.h"
#include "targetsystem/proxy/ErrorText.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::CallDescription;
using ZrAtlCom::ComPtr;
using ZrAtlCom::SinkEntry;

namespace ZrHmiEventLogger {

namespace {

constexpr CallDescription messageCall{CC_STDCALL, VT_EMPTY, 1, {VT_DISPATCH}};
constexpr CallDescription alarmCall{CC_STDCALL, VT_EMPTY, 1, {VT_DISPATCH}};
constexpr CallDescription alarmChangeCall{CC_STDCALL, VT_EMPTY, 2, {VT_DISPATCH, VT_BOOL}};
constexpr CallDescription databaseCall{CC_STDCALL, VT_UI4, 1, {VT_I4}};

constexpr LONG lastReason = databaseChangeDeleted;

bool hasItsObject(const RecordedCallback& notification) {
    return notification.kind == NotificationKind::databaseChanged || notification.alarm ||
           notification.message;
}

}  // namespace

ZrAtlCom::SinkTable TargetSystem::sinkTable() {
    static const std::array<SinkEntry, 5> table{
        entry<&TargetSystem::messageSent, messageCall>(2),
        entry<&TargetSystem::alarmRaised, alarmCall>(3),
        entry<&TargetSystem::alarmCleared, alarmChangeCall>(4),
        entry<&TargetSystem::alarmConfirmed, alarmChangeCall>(5),
        entry<&TargetSystem::databaseChanged, databaseCall>(10),
    };
    return table;
}

void TargetSystem::messageSent(IZrMessage* message) {
    receive({NotificationKind::messageSent, {}, ComPtr(message), VARIANT_FALSE, {}});
}

void TargetSystem::alarmRaised(IZrAlarm* alarm) {
    receive({NotificationKind::alarmRaised, ComPtr(alarm), {}, VARIANT_FALSE, {}});
}

void TargetSystem::alarmCleared(IZrAlarm* alarm, VARIANT_BOOL removed) {
    receive({NotificationKind::alarmCleared, ComPtr(alarm), {}, removed, {}});
}

void TargetSystem::alarmConfirmed(IZrAlarm* alarm, VARIANT_BOOL removed) {
    receive({NotificationKind::alarmConfirmed, ComPtr(alarm), {}, removed, {}});
}

ULONG TargetSystem::databaseChanged(tagDatabaseChangeReasonEnum reason) {
    if (static_cast<ULONG>(reason) <= lastReason)
        receive({NotificationKind::databaseChanged, {}, {}, VARIANT_FALSE, reason});
    return 0;
}

/// Whatever makes a notification be missed is reported.
template <class Function>
void TargetSystem::guard(Function function) {
    // The owner may let this target go while its own notification runs.
    const auto self = weak_from_this().lock();
    if (!self || context.isOver())
        return;
    try {
        function();
    } catch (const Abandoned&) {
        // Nobody waits for it any more.
    } catch (...) {
        reportFailure();
        // The import brings what was missed.
        RequestReconnect();
    }
}

void TargetSystem::receive(RecordedCallback&& notification) {
    if (!hasItsObject(notification))
        return refused(E_POINTER);
    guard([&] {
        notifications.deliver(std::move(notification), [this](const RecordedCallback& live) {
            if (!context.isOver())
                handle(live);
        });
    });
}

void TargetSystem::refused(HRESULT hr) noexcept {
    ZrAtlCom::catchToHresult([&] {
        guard([&] {
            const std::string count = std::to_string(++misfits);
            logging.reportCommunicationError(
                name(), std::runtime_error("A notification does not fit (" + count +
                                           " so far): " + ZrAtlCom::describe(hr)));
            connection.makeUpForMisfit();
        });
    });
}

void TargetSystem::handle(const RecordedCallback& notification) {
    if (notification.kind == NotificationKind::databaseChanged)
        connection.databaseChanged(notification.reason);
    else
        lifecycle.handle(notification, false);
}

}  // namespace ZrHmiEventLogger
