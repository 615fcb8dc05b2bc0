#include "robustness/LoggerContent.h"

#include "events/ProxyValue.h"
#include "platform/Text.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::check;
using ZrAtlCom::ComPtr;
using ZrHmiEventLogger::forEachItem;
using ZrHmiEventLogger::readValue;
using ZrHmiEventLogger::receiveObject;

namespace bridge_test {

namespace {

bool isActive(const ComPtr<IZrLoggedEvent>& event) {
    return readValue(*event.query<IZrLoggedEvent2>(), &IZrLoggedEvent2::get_IsActive) ==
           VARIANT_TRUE;
}

}  // namespace

LoggerContent readLogger(CreateInstanceFunction& createInstance, const char* netId, ULONG limit) {
    const auto logger = receiveObject<IZrEventLogger4>([&](IZrEventLogger4** created) {
        return createInstance(CLSID_EventLogger, InterfaceId<IZrEventLogger4>::value(),
                              reinterpret_cast<void**>(created));
    });
    const ScopedBstr address(netId);
    check(logger->Connect(address.get()));
    LoggerContent content;
    const auto logged = receiveObject<IZrLoggedEventCollection>(
        [&](IZrLoggedEventCollection** events) { return logger->GetLoggedEvents(limit, events); });
    forEachItem<IZrLoggedEvent>(*logged, [&](const auto& event) {
        if (!isActive(event))
            content.events.insert(imageOf(*event));
    });
    const auto alarms = receiveObject<IZrAlarmCollection>(
        [&](IZrAlarmCollection** active) { return logger->GetActiveAlarms(active); });
    forEachItem<IZrAlarm>(*alarms, [&](const auto& alarm) {
        content.events.insert(imageOf(*alarm));
        content.uncleared.emplace_back(imageOf(*alarm), unclearedImageOf(*alarm));
        ++content.active;
    });
    check(logger->Disconnect());
    return content;
}

void acceptUncleared(LoggerContent& content, const EventImages& shown) {
    for (const auto& [image, uncleared] : content.uncleared)
        if (!shown.contains(image) && shown.contains(uncleared)) {
            content.events.erase(content.events.find(image));
            content.events.insert(uncleared);
        }
}

}  // namespace bridge_test
