#pragma once

#include <atomic>
#include <tuple>
#include <type_traits>
#include <utility>

#include "robustness/PassCall.h"
#include "targetsystem/proxy/ComPtr.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

/// How many stand-ins of the library's objects exist.
std::atomic<int>& liveProxyObjects();

/// Stands before an object of the simulated library: every call of the extension passes the
/// fault plan first. It begins with one reference, which its creator owns, and offers just the
/// interfaces that the real object offers.
template <class First, class... Others>
class ProxyObject : public First, public Others... {
public:
    ProxyObject(const ProxyObject&) = delete;
    ProxyObject& operator=(const ProxyObject&) = delete;

    // Without `override`: not every First is dispatch-capable.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) {
        using ZrEventLoggerFnxProxyLib::IZrEventArguments;
        using ZrEventLoggerFnxProxyLib::IZrJsonAttribute;
        const bool attribute = iid == InterfaceId<IZrJsonAttribute>::value() ||
                               iid == InterfaceId<IZrEventArguments>::value();
        return passCall(
            __func__, attribute ? CallKind::attributeQuery : CallKind::handsOutObject,
            [&]() -> HRESULT {
                *object = find(iid);
                if (*object)
                    this->AddRef();
                return *object ? S_OK : E_NOINTERFACE;
            },
            object);
    }
    ULONG STDMETHODCALLTYPE AddRef() { return ++references; }
    ULONG STDMETHODCALLTYPE Release() {
        auto& plan = FaultPlan::instance();
        if (plan.enter(__func__, CallKind::release) == FaultPlan::Verdict::pass)
            return letGo();
        plan.forget([this] { letGo(); });
        return references;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) {
        return E_NOTIMPL;
    }

    template <class Interface = First>
    Interface* real() const {
        return std::get<ZrAtlCom::ComPtr<Interface>>(reals).get();
    }

protected:
    explicit ProxyObject(const ZrAtlCom::ComPtr<First>& object)
        : reals(object, object.template query<Others>()...) {
        ++liveProxyObjects();
    }
    virtual ~ProxyObject() { --liveProxyObjects(); }

    ULONG letGo() {
        const ULONG left = dropReference();
        if (left == 0)
            delete this;
        return left;
    }
    virtual ULONG dropReference() { return --references; }

    /// The same method of the real object.
    template <class Owner, class... Parameters, class... Arguments>
    HRESULT forward(const char* name, HRESULT (STDMETHODCALLTYPE Owner::*method)(Parameters...),
                    const Arguments&... arguments) {
        using Interface = std::conditional_t<std::is_base_of_v<Owner, First>, First, Owner>;
        return passCall(
            name, kindOfCall<Arguments...>(),
            [&] { return (real<Interface>()->*method)(arguments...); }, arguments...);
    }

    /// Puts a stand-in in the place of what a call has handed out.
    template <class Proxy, class Interface>
    static HRESULT wrap(HRESULT hr, Interface** object) {
        if (SUCCEEDED(hr) && *object) {
            ZrAtlCom::ComPtr<Interface> received;
            received.attach(*object);
            *object = Proxy::standInFor(received);
        }
        return hr;
    }

    std::atomic<ULONG> references = 1;

private:
    void* find(REFIID iid) {
        if (iid == IID_IUnknown || iid == IID_IDispatch)
            return static_cast<First*>(this);
        void* found = nullptr;
        (pick<First>(iid, found), ..., pick<Others>(iid, found));
        return found;
    }
    template <class Interface>
    void pick(REFIID iid, void*& found) {
        if (iid == InterfaceId<Interface>::value() && real<Interface>())
            found = static_cast<Interface*>(this);
    }

    const std::tuple<ZrAtlCom::ComPtr<First>, ZrAtlCom::ComPtr<Others>...> reals;
};

}  // namespace bridge_test
