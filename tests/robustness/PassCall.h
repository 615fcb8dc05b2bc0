#pragma once

#include <type_traits>

#include "platform/Automation.h"
#include "robustness/FaultPlan.h"

namespace bridge_test {

/// The protocol's "time-out elapsed".
inline constexpr HRESULT seededFailure = static_cast<HRESULT>(0x98110745);

template <class T>
inline constexpr bool receivesText = std::is_same_v<T, BSTR*>;
template <class T>
inline constexpr bool receivesObject =
    std::is_pointer_v<T>&& std::is_pointer_v<std::remove_pointer_t<T>> && !receivesText<T>;

/// By the types of its parameters.
template <class... Parameters>
constexpr CallKind kindOfCall() {
    if constexpr ((receivesObject<Parameters> || ...))
        return CallKind::handsOutObject;
    return (receivesText<Parameters> || ...) ? CallKind::handsOutText : CallKind::plain;
}

template <class T>
void handOutNothing(const T& parameter) {
    if constexpr (receivesObject<T> || receivesText<T>)
        *parameter = nullptr;
}

/// Runs `call` unless the fault plan has something else in mind. `parameters` are those of the
/// call, of which those that receive an object or a text are emptied when none is to be handed
/// out.
template <class Call, class... Parameters>
HRESULT passCall(const char* name, CallKind kind, Call call, const Parameters&... parameters) {
    switch (FaultPlan::instance().enter(name, kind)) {
        case FaultPlan::Verdict::fail:
            return seededFailure;
        case FaultPlan::Verdict::handOutNothing:
            (handOutNothing(parameters), ...);
            return S_OK;
        default:
            return call();
    }
}

}  // namespace bridge_test
