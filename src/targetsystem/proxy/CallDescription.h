#pragma once

#include "platform/Automation.h"

namespace ZrAtlCom {

inline constexpr UINT maxParameterCount = 8;

/// How DispCallFunc calls a member of a sink; the sink itself is not among the parameters.
struct CallDescription {
    CALLCONV convention;
    VARTYPE returnType;
    UINT parameterCount;
    VARTYPE parameterTypes[maxParameterCount];
};

}  // namespace ZrAtlCom
