#pragma once

#include <new>

#include "platform/Automation.h"

namespace ZrSimulator {

/// Runs the body of a function that a client called; no exception gets to the client.
template <class Body>
HRESULT catchToResult(Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

}  // namespace ZrSimulator
