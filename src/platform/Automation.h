/// Windows automation as the rest of the tree uses it: on Windows the system's own headers,
/// elsewhere the same names from posix/. Code above this header does not know which it has.
#pragma once

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <winsock2.h>
#include <windows.h>
//
#include <ocidl.h>
#include <oleauto.h>
#include <olectl.h>
#else
#include "platform/posix/Automation.h"
#endif

#include <cstring>

/// The interface identifier of an automation interface: specialised beside each interface.
template <class Interface>
struct InterfaceId;

template <>
struct InterfaceId<IUnknown> {
    static const IID& value() { return IID_IUnknown; }
};
template <>
struct InterfaceId<IDispatch> {
    static const IID& value() { return IID_IDispatch; }
};
template <>
struct InterfaceId<IConnectionPointContainer> {
    static const IID& value() { return IID_IConnectionPointContainer; }
};
template <>
struct InterfaceId<IConnectionPoint> {
    static const IID& value() { return IID_IConnectionPoint; }
};

/// Orders identifiers by their bytes, for maps.
inline bool operator<(const GUID& a, const GUID& b) {
    return std::memcmp(&a, &b, sizeof(GUID)) < 0;
}
