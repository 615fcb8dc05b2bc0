#pragma once

#include <stdexcept>
#include <string>

#include "platform/Automation.h"

namespace ZrAtlCom {

/// A failed automation call: its HRESULT, and the text for it in UTF-8.
class CAtlException : public std::runtime_error {
public:
    CAtlException(HRESULT hr, const std::string& text) : std::runtime_error(text), failure(hr) {}

    HRESULT hresult() const noexcept { return failure; }

private:
    HRESULT failure;
};

[[noreturn]] void throwCAtlException(HRESULT hr);

/// Every call into the proxy library goes through here: a failure becomes a CAtlException with
/// its described text, any other result (S_FALSE is one) is returned.
inline HRESULT check(HRESULT hr) {
    if (FAILED(hr))
        throwCAtlException(hr);
    return hr;
}

}  // namespace ZrAtlCom
