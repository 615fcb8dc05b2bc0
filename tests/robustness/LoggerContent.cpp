#include "robustness/LoggerContent.h"

#include "events/ProxyValue.h"
#include "platform/Text.h"
#include "targetsystem/proxy/CreateInstance.h"

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

LoggerContent readLogger(const char* netId, ULONG limit) {
    ComPtr<IZrEventLogger4> logger;
    check(ZrAtlCom::createInstance(CLSID_EventLogger, logger));
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
