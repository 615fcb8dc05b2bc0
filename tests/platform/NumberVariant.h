#pragma once

#include "platform/Automation.h"

/// An argument of a call; of the types that are no numbers, the one whose bits are `value`.
inline VARIANT number(LONGLONG value, VARTYPE type = VT_I4) {
    VARIANT made;
    VariantInit(&made);
    made.vt = type;
    made.llVal = value;
    return made;
}
