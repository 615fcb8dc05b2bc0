#include "simulator/com/ConnectionPoint.h"

#include <utility>

#include "simulator/com/Logger.h"
#include "targetsystem/proxy/ComPtr.h"

namespace ZrSimulator {

HRESULT ConnectionPoint::QueryInterface(REFIID iid, void** object) {
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IConnectionPoint)
        return E_NOINTERFACE;
    *object = this;
    AddRef();
    return S_OK;
}

ULONG ConnectionPoint::AddRef() {
    return logger.AddRef();
}

ULONG ConnectionPoint::Release() {
    return logger.Release();
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* iid) {
    if (!iid)
        return E_POINTER;
    *iid = ZrEventLoggerFnxProxyLib::IID__IZrEventLoggerEvents;
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
    if (!container)
        return E_POINTER;
    *container = &logger;
    logger.AddRef();
    return S_OK;
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
    return catchToResult([&]() -> HRESULT {
        if (!sink || !cookie)
            return E_POINTER;
        *cookie = 0;
        if (const auto answer = logger.link().enter(Operation::Advise))
            return *answer;
        void* events = nullptr;
        if (FAILED(sink->QueryInterface(ZrEventLoggerFnxProxyLib::IID__IZrEventLoggerEvents,
                                        &events)) ||
            !events)
            return CONNECT_E_CANNOTCONNECT;
        ZrAtlCom::ComPtr<IDispatch> receiver;
        receiver.attach(static_cast<IDispatch*>(events));
        *cookie = logger.link().sinkList().add(std::move(receiver));
        logger.link().countAdvised(+1);
        return S_OK;
    });
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) {
    return catchToResult([&]() -> HRESULT {
        if (const auto answer = logger.link().enter(Operation::Unadvise))
            return *answer;
        if (!logger.link().sinkList().remove(cookie))
            return CONNECT_E_NOCONNECTION;
        logger.link().countAdvised(-1);
        return S_OK;
    });
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections**) {
    return E_NOTIMPL;
}

}  // namespace ZrSimulator
