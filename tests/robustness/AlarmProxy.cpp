#include "robustness/AlarmProxy.h"

#include <map>

using ZrEventLoggerFnxProxyLib::IZrAlarm;

namespace bridge_test {

namespace {

/// Guards the stand-ins that exist, by the alarm that each stands for, and their last references.
Mutex standInsMutex;
std::map<const IZrAlarm*, AlarmProxy*> standIns;

}  // namespace

IZrAlarm* AlarmProxy::standInFor(const ZrAtlCom::ComPtr<IZrAlarm>& alarm) {
    Lock lock(standInsMutex);
    AlarmProxy*& standIn = standIns[alarm.get()];
    if (standIn)
        standIn->AddRef();
    else
        standIn = new AlarmProxy(alarm);
    return standIn;
}

ULONG AlarmProxy::dropReference() {
    Lock lock(standInsMutex);
    const ULONG left = --references;
    if (left == 0)
        standIns.erase(real());
    return left;
}

}  // namespace bridge_test
