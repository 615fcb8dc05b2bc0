#include "targetsystem/proxy/EventCookie.h"

#include <utility>

#include "targetsystem/proxy/CatchToHresult.h"

namespace ZrAtlCom {

EventCookie::~EventCookie() {
    catchToHresult([this] { return unadvise(); });
}

HRESULT EventCookie::advise(IUnknown* source, IUnknown* sink, REFIID eventsId) {
    if (advised())
        return S_FALSE;
    const auto container = ComPtr<IUnknown>(source).query<IConnectionPointContainer>();
    if (!container)
        return E_NOINTERFACE;
    Connection made;
    HRESULT hr = container->FindConnectionPoint(eventsId, made.point.put());
    if (FAILED(hr))
        return hr;
    if (!made.point)
        return E_UNEXPECTED;
    hr = made.point->Advise(sink, &made.cookie);
    if (FAILED(hr) || keep(made))
        return hr;
    made.point->Unadvise(made.cookie);
    return S_FALSE;
}

HRESULT EventCookie::unadvise() {
    Connection ended;
    {
        Lock lock(mutex);
        std::swap(ended, connection);
    }
    if (ended.cookie == notAdvised)
        return S_OK;
    try {
        const HRESULT hr = ended.point->Unadvise(ended.cookie);
        if (FAILED(hr) && hr != CONNECT_E_NOCONNECTION)
            keep(ended);
        return hr;
    } catch (...) {
        keep(ended);
        throw;
    }
}

bool EventCookie::advised() const {
    Lock lock(mutex);
    return connection.cookie != notAdvised;
}

bool EventCookie::keep(const Connection& made) {
    Lock lock(mutex);
    if (connection.cookie != notAdvised)
        return false;
    connection = made;
    return true;
}

}  // namespace ZrAtlCom
