#pragma once

#include <type_traits>

#include "platform/Automation.h"
#include "robustness/FaultPlan.h"

namespace bridge_test {

/// The protocol's "time-out elapsed".
inline constexpr HRESULT seededFailure = static_cast<HRESULT>(0x98110745);

/// Whether a parameter of this type receives an object or a text.
template <class T>
inline constexpr bool receivesObject =
    std::is_pointer_v<T>&& std::is_pointer_v<std::remove_pointer_t<T>>;

template <class T>
void handOutNothing(const T& parameter) {
    if constexpr (receivesObject<T>)
        *parameter = nullptr;
}

/// Runs `call` unless the fault plan has something else in mind. `parameters` are those of the
/// call, of which the ones that receive an object are emptied when none is to be handed out.
template <class Call, class... Parameters>
HRESULT passCall(const char* name, Call call, const Parameters&... parameters) {
    constexpr bool handsOut = (receivesObject<Parameters> || ...);
    switch (FaultPlan::instance().enter(name, handsOut ? CallKind::handsOut : CallKind::plain)) {
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
