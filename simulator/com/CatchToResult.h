#pragma once

#include <new>

#include "platform/Automation.h"
#include "simulator/runtime/FaultPlan.h"

namespace ZrSimulator {

/// Runs the body of a function that a client called; no exception gets to the client but those
/// that are planned for it.
template <class Body>
HRESULT catchToResult(Body&& body) {
    try {
        return body();
    } catch (const PlannedThrow&) {
        throw;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

}  // namespace ZrSimulator
