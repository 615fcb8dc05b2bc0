#include "platform/Automation.h"

namespace {

bool isKnown(VARTYPE type) {
    switch (type) {
        case VT_EMPTY:
        case VT_NULL:
        case VT_I1:
        case VT_UI1:
        case VT_I2:
        case VT_UI2:
        case VT_I4:
        case VT_UI4:
        case VT_I8:
        case VT_UI8:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_R8:
        case VT_DATE:
        case VT_BOOL:
        case VT_ERROR:
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return true;
        default:
            return (type & VT_BYREF) && isKnown(static_cast<VARTYPE>(type ^ VT_BYREF));
    }
}

/// The object of a variant that holds one, or null.
IUnknown* objectIn(const VARIANTARG& variant) {
    if (variant.vt == VT_DISPATCH)
        return variant.pdispVal;
    return variant.vt == VT_UNKNOWN ? variant.punkVal : nullptr;
}

}  // namespace

void VariantInit(VARIANTARG* variant) { *variant = VARIANTARG{}; }

HRESULT VariantClear(VARIANTARG* variant) {
    if (!variant)
        return E_INVALIDARG;
    if (!isKnown(variant->vt))
        return DISP_E_BADVARTYPE;
    if (variant->vt == VT_BSTR)
        SysFreeString(variant->bstrVal);
    else if (IUnknown* object = objectIn(*variant))
        object->Release();
    variant->vt = VT_EMPTY;
    return S_OK;
}

HRESULT VariantCopy(VARIANTARG* to, VARIANTARG* from) {
    if (!to || !from)
        return E_INVALIDARG;
    if (to == from)
        return S_OK;
    if (!isKnown(from->vt))
        return DISP_E_BADVARTYPE;
    if (const HRESULT hr = VariantClear(to); FAILED(hr))
        return hr;
    VARIANTARG copy = *from;
    if (copy.vt == VT_BSTR && copy.bstrVal) {
        copy.bstrVal = SysAllocStringLen(from->bstrVal, SysStringLen(from->bstrVal));
        if (!copy.bstrVal)
            return E_OUTOFMEMORY;
    } else if (IUnknown* object = objectIn(copy)) {
        object->AddRef();
    }
    *to = copy;
    return S_OK;
}
