#pragma once

#include <functional>
#include <string>
#include <utility>

#include "platform/Text.h"
#include "targetsystem/proxy/CAtlException.h"

namespace ZrAtlCom {

/// Calls a method whose last parameter hands out a BSTR, which is converted and freed at once:
/// `receiveText(&IZrEvent::get_SourceName, alarm)`. Throws CAtlException when the call fails.
template <class Method, class... Arguments>
std::string receiveText(Method&& method, Arguments&&... arguments) {
    ScopedBstr text;
    check(std::invoke(std::forward<Method>(method), std::forward<Arguments>(arguments)...,
                      text.put()));
    return text.utf8();
}

}  // namespace ZrAtlCom
