#pragma once

#include <utility>

#include "targetsystem/proxy/ComPtr.h"

namespace ZrHmiEventLogger {

/// Owns one reference to a proxy object until it is reset or destroyed. Shared by pointer, so
/// that whoever needs the object for a moment can pin it. Not synchronised.
template <class Interface>
class ScopedEventPointer {
public:
    ScopedEventPointer() noexcept = default;
    /// Adds a reference of its own.
    explicit ScopedEventPointer(Interface* object) noexcept : object(object) {}
    /// Takes over the reference.
    explicit ScopedEventPointer(ZrAtlCom::ComPtr<Interface> object) noexcept
        : object(std::move(object)) {}
    ScopedEventPointer(const ScopedEventPointer&) = delete;
    ScopedEventPointer& operator=(const ScopedEventPointer&) = delete;

    bool isHeld() const noexcept { return static_cast<bool>(object); }
    Interface* get() const noexcept { return object.get(); }
    void reset() noexcept { object = {}; }

private:
    ZrAtlCom::ComPtr<Interface> object;
};

}  // namespace ZrHmiEventLogger
