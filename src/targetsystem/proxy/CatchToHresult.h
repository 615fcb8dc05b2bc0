#pragma once

#include <type_traits>
#include <utility>

#include "platform/Automation.h"

namespace ZrAtlCom {

/// What the exception that is being handled is to the other side of an automation call: its own
/// HRESULT when it has one, E_OUTOFMEMORY, or else E_FAIL. Call from a catch block.
HRESULT hresultOfCurrentException() noexcept;

/// Runs a function that automation called, and keeps its exceptions from the caller. The function
/// returns an HRESULT, or nothing for S_OK.
template <class Function>
HRESULT catchToHresult(Function&& function) noexcept {
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Function>>) {
            std::forward<Function>(function)();
            return S_OK;
        } else {
            return std::forward<Function>(function)();
        }
    } catch (...) {
        return hresultOfCurrentException();
    }
}

}  // namespace ZrAtlCom
