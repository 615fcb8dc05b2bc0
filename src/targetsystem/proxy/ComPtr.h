#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "platform/Automation.h"

namespace ZrAtlCom {

/// A counted reference to an automation object, released when it leaves its scope. Two threads
/// may not use one ComPtr at a time unless both only read it.
template <class T>
class ComPtr {
public:
    ComPtr() noexcept = default;
    ComPtr(std::nullptr_t) noexcept {}
    /// Adds a reference of its own; see `attach` for one that was handed over.
    explicit ComPtr(T* object) noexcept : object(object) {
        if (object)
            object->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.object) {}
    ComPtr(ComPtr&& other) noexcept : object(other.detach()) {}
    template <class Derived>
    requires std::is_convertible_v<Derived*, T*> ComPtr(const ComPtr<Derived>& other)
    noexcept : ComPtr(static_cast<T*>(other.get())) {}
    ComPtr& operator=(ComPtr other) noexcept {
        swap(other);
        return *this;
    }
    ~ComPtr() {
        if (object)
            object->Release();
    }

    T* get() const noexcept { return object; }
    T* operator->() const noexcept { return object; }
    T& operator*() const noexcept { return *object; }
    explicit operator bool() const noexcept { return object != nullptr; }

    /// Takes over a reference that the caller owns.
    void attach(T* owned) noexcept {
        ComPtr old;
        old.object = std::exchange(object, owned);
    }
    /// Gives the reference up to the caller, who has to release it.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object, nullptr); }
    /// Where a call stores the reference that it hands out; what was held before is released.
    T** put() noexcept {
        attach(nullptr);
        return &object;
    }
    void swap(ComPtr& other) noexcept { std::swap(object, other.object); }

    /// The object's interface U, empty when it refuses.
    template <class U>
    ComPtr<U> query() const {
        ComPtr<U> result;
        void* found = nullptr;
        if (object && SUCCEEDED(object->QueryInterface(InterfaceId<U>::value(), &found)))
            result.attach(static_cast<U*>(found));
        return result;
    }

    friend bool operator==(const ComPtr& a, const ComPtr& b) noexcept {
        return a.object == b.object;
    }

private:
    T* object = nullptr;
};

}  // namespace ZrAtlCom
