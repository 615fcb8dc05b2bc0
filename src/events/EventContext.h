#pragma once

#include <atomic>
#include <cstdint>

#include "events/Abandoned.h"
#include "events/ILoggingFunctions.h"
#include "events/ProxyValue.h"
#include "host/Text.h"
#include "host/Time.h"

namespace ZrHmiEventLogger {

/// What every piece that makes events of one target system needs to know, and its way to the
/// proxy's objects: each call of one waits for the logger, so none is begun for a target that is
/// over.
struct EventContext {
    ZrHmiSrv::Text targetName;
    ZrHmiSrv::Text domain;
    ILoggingFunctions& logging;
    std::atomic<std::int32_t>& hostIds;  ///< the next host alarm id, shared by all target systems
    std::int64_t eventLimit;
    ZrHmiSrv::Timespan timeout;  ///< of a call of the proxy
    const std::atomic<bool>& stopFlag;
    const std::atomic<bool>& retired;

    int drawHostId() const { return hostIds.fetch_add(1); }

    /// The extension stops, or the target was replaced or removed.
    bool isOver() const { return stopFlag || retired; }
    /// Throws Abandoned when the target is over.
    void proceed() const {
        if (isOver())
            throw Abandoned();
    }
    template <class Object, class Owner, class T>
    T read(Object& object, HRESULT (STDMETHODCALLTYPE Owner::*getter)(T*)) const {
        proceed();
        return readValue(object, getter);
    }
    template <class Object, class Call>
    ZrAtlCom::ComPtr<Object> receive(Call call) const {
        proceed();
        return receiveObject<Object>(call);
    }
    template <class Item>
    ULONG countOf(ZrEventLoggerFnxProxyLib::IZrCollection<Item>& collection) const {
        return read(collection, &ZrEventLoggerFnxProxyLib::IZrCollection<Item>::get_Count);
    }
    template <class Item, class Visit>
    void forEach(ZrEventLoggerFnxProxyLib::IZrCollection<Item>& collection, Visit visit) const {
        forEach<Item>(collection, countOf<Item>(collection), visit);
    }
    template <class Item, class Visit>
    void forEach(ZrEventLoggerFnxProxyLib::IZrCollection<Item>& collection, ULONG count,
                 Visit visit) const {
        for (ULONG index = 0; index < count; ++index)
            visit(receive<Item>([&](Item** item) { return collection.get_Item(index, item); }));
    }
    /// Empty where the object refuses the interface.
    template <class Interface, class Object>
    ZrAtlCom::ComPtr<Interface> query(Object& object) const {
        proceed();
        return optionalInterface<Interface>(object);
    }
};

}  // namespace ZrHmiEventLogger
