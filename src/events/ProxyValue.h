#pragma once

#include "host/Time.h"
#include "target/proxy/CAtlException.h"
#include "target/proxy/ComPtr.h"

namespace ZrHmiEventLogger {

/// Reads one property of a proxy object: `readValue(alarm, &IZrAlarm::get_TimeCleared)`.
/// Throws ZrAtlCom::CAtlException when the call fails.
template <class Object, class Owner, class T>
T readValue(Object& object, HRESULT (STDMETHODCALLTYPE Owner::*getter)(T*)) {
    T value{};
    ZrAtlCom::check((object.*getter)(&value));
    return value;
}

/// Takes the object that a call hands out: `receiveObject<Item>([&](Item** item) { return call(item); })`.
/// A success without an object is a failure like any other.
template <class Object, class Call>
ZrAtlCom::ComPtr<Object> receiveObject(Call call) {
    ZrAtlCom::ComPtr<Object> object;
    ZrAtlCom::check(call(object.put()));
    ZrAtlCom::check(object ? S_OK : E_POINTER);
    return object;
}

ZrHmiSrv::Timestamp toTimestamp(FILETIME time);

}  // namespace ZrHmiEventLogger
