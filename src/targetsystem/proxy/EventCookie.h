#pragma once

#include "platform/Mutex.h"
#include "targetsystem/proxy/ComPtr.h"

namespace ZrAtlCom {

/// One advised sink: the connection point and its cookie, which begin and end together. Any
/// thread; the source is called with no lock held. The destructor unadvises, so that a member of
/// this type is declared last in the class whose sink it advises.
class EventCookie {
public:
    static constexpr DWORD notAdvised = 0xFEFEFEFE;

    EventCookie() = default;
    EventCookie(const EventCookie&) = delete;
    EventCookie& operator=(const EventCookie&) = delete;
    ~EventCookie();

    /// Connects `sink` to the events `eventsId` of `source`; S_FALSE when it is connected already.
    HRESULT advise(IUnknown* source, IUnknown* sink, REFIID eventsId);
    /// Of several callers only one unadvises; the others get S_OK at once. After a failure the
    /// sink is still advised, as the source may call it yet; unadvising can be tried again.
    HRESULT unadvise();
    bool advised() const;

private:
    struct Connection {
        ComPtr<IConnectionPoint> point;
        DWORD cookie = notAdvised;
    };
    /// False, and nothing kept, when another call was faster.
    bool keep(const Connection& made);

    mutable Mutex mutex;
    Connection connection GUARDED_BY(mutex);
};

}  // namespace ZrAtlCom
