#pragma once

#include <atomic>

#include "platform/Automation.h"

/// An automation object on the stack that counts its references and answers to the given
/// interfaces beside IUnknown. It starts with the reference of its owner.
template <class... Interfaces>
class FakeObject : public Interfaces... {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        (offer<Interfaces>(iid, object), ...);
        counter += *object != nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++counter); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--counter); }

    LONG references() const { return counter; }

protected:
    ~FakeObject() = default;

private:
    template <class Interface>
    void offer(REFIID iid, void** object) {
        if (iid == IID_IUnknown || iid == InterfaceId<Interface>::value())
            *object = static_cast<Interface*>(this);
    }

    std::atomic<LONG> counter = 1;
};

class FakeUnknown final : public FakeObject<IUnknown> {};
