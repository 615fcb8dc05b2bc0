#pragma once

#include <optional>

#include "simulator/com/RefCounted.h"
#include "simulator/runtime/Operation.h"

namespace ZrSimulator {

/// An automation object with these interfaces. The first one, which is dispatch-capable like the
/// library's own, stands for its identity; calls by name are not supported.
template <class First, class... Others>
class ComObject : public RefCounted, public First, public Others... {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) final {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        const auto answer = enter(Operation::QueryInterface);
        return answer ? *answer : provide(iid, object);
    }
    /// The same for the library itself, which nothing hinders.
    HRESULT provide(REFIID iid, void** object) {
        *object = find(iid);
        if (!*object)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() final {
        countReference(+1);
        return retain();
    }
    ULONG STDMETHODCALLTYPE Release() final {
        countReference(-1);
        return drop();
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) final {
        if (!count)
            return E_POINTER;
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) final { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) final {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) final {
        return E_NOTIMPL;
    }

protected:
    ~ComObject() override = default;

    /// A call of a client begins here; see FaultPlan.
    virtual std::optional<HRESULT> enter(Operation operation) = 0;
    /// A client takes or gives back a reference.
    virtual void countReference(int change) noexcept = 0;
    /// False for an optional interface that this very object does not have.
    virtual bool offers(REFIID) const { return true; }

private:
    void* find(REFIID iid) {
        if (iid == IID_IUnknown || iid == IID_IDispatch)
            return static_cast<First*>(this);
        void* found = nullptr;
        (pick<First>(iid, found), ..., pick<Others>(iid, found));
        return offers(iid) ? found : nullptr;
    }
    template <class Interface>
    void pick(REFIID iid, void*& found) {
        if (iid == InterfaceId<Interface>::value())
            found = static_cast<Interface*>(this);
    }
};

/// Hands an object to a client, which owns the reference.
template <class Interface, class Object>
HRESULT handOut(const Ref<Object>& object, Interface** result) {
    object->AddRef();
    *result = object.get();
    return S_OK;
}

}  // namespace ZrSimulator
