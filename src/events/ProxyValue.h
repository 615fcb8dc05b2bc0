#pragma once

#include "host/Time.h"
#include "targetsystem/proxy/CAtlException.h"
#include "targetsystem/proxy/ComPtr.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// Reads one property of a proxy object: `readValue(alarm, &IZrAlarm::get_TimeCleared)`.
/// Throws ZrAtlCom::CAtlException when the call fails.
template <class Object, class Owner, class T>
T readValue(Object& object, HRESULT (STDMETHODCALLTYPE Owner::*getter)(T*)) {
    T value{};
    ZrAtlCom::check((object.*getter)(&value));
    return value;
}

/// Takes the object that a call hands out: `receiveObject<Item>([&](Item** item) { return
/// call(item); })`. A success without an object is a failure like any other.
template <class Object, class Call>
ZrAtlCom::ComPtr<Object> receiveObject(Call call) {
    ZrAtlCom::ComPtr<Object> object;
    ZrAtlCom::check(call(object.put()));
    ZrAtlCom::check(object ? S_OK : E_POINTER);
    return object;
}

/// Hands each item of a collection to `visit`, in a ComPtr. Throws when an item cannot be had.
template <class Item, class Visit>
void forEachItem(ZrEventLoggerFnxProxyLib::IZrCollection<Item>& collection, Visit visit) {
    using Collection = ZrEventLoggerFnxProxyLib::IZrCollection<Item>;
    const ULONG count = readValue(collection, &Collection::get_Count);
    for (ULONG index = 0; index < count; ++index)
        visit(receiveObject<Item>([&](Item** item) { return collection.get_Item(index, item); }));
}

/// The interface of an object that need not have it, without which the object would be taken for
/// something else: not to get to know whether it has it is a failure like any other.
template <class Interface, class Object>
ZrAtlCom::ComPtr<Interface> optionalInterface(Object& object) {
    void* found = nullptr;
    const HRESULT hr = object.QueryInterface(InterfaceId<Interface>::value(), &found);
    if (hr == E_NOINTERFACE)
        return {};
    ZrAtlCom::check(hr);
    ZrAtlCom::check(found ? S_OK : E_POINTER);
    ZrAtlCom::ComPtr<Interface> result;
    result.attach(static_cast<Interface*>(found));
    return result;
}

ZrHmiSrv::Timestamp toTimestamp(FILETIME time);

}  // namespace ZrHmiEventLogger
