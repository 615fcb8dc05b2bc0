#pragma once

#include <atomic>

#include "platform/Automation.h"

/// An automation object on the stack that counts its references and answers to one interface
/// beside IUnknown. It starts with the reference of its owner.
template <class Interface>
class FakeObject : public Interface {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = iid == IID_IUnknown || iid == InterfaceId<Interface>::value();
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (known)
            this->AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++counter); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--counter); }

    LONG references() const { return counter; }

protected:
    ~FakeObject() = default;

private:
    std::atomic<LONG> counter = 1;
};

class FakeUnknown final : public FakeObject<IUnknown> {};
