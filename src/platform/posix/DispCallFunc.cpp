#include <array>
#include <cstring>

#include <ffi.h>

#include "platform/Automation.h"

namespace {

/// How a variant type is passed and returned; null for a type that cannot be.
ffi_type* ffiType(VARTYPE type) {
    if (type & VT_BYREF)
        return &ffi_type_pointer;
    switch (type) {
        case VT_I1:
            return &ffi_type_sint8;
        case VT_UI1:
            return &ffi_type_uint8;
        case VT_I2:
        case VT_BOOL:
            return &ffi_type_sint16;
        case VT_UI2:
            return &ffi_type_uint16;
        case VT_I4:
        case VT_INT:
        case VT_ERROR:
        case VT_HRESULT:
            return &ffi_type_sint32;
        case VT_UI4:
        case VT_UINT:
            return &ffi_type_uint32;
        case VT_I8:
            return &ffi_type_sint64;
        case VT_UI8:
            return &ffi_type_uint64;
        case VT_R4:
            return &ffi_type_float;
        case VT_R8:
        case VT_DATE:
            return &ffi_type_double;
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return &ffi_type_pointer;
        default:
            return nullptr;
    }
}

ffi_type* ffiReturnType(VARTYPE type) {
    return type == VT_EMPTY ? &ffi_type_void : ffiType(type);
}

/// The function's address: in the object's virtual table, or `offset` itself.
ULONG_PTR functionAddress(const void* object, ULONG_PTR offset) {
    if (!object)
        return offset;
    const char* table = nullptr;
    std::memcpy(&table, object, sizeof table);
    ULONG_PTR address = 0;
    std::memcpy(&address, table + offset, sizeof address);
    return address;
}

constexpr UINT maxArguments = 32;

/// A call as libffi wants it. Values are read out of the variants, whatever type those have.
struct Call {
    std::array<ffi_type*, maxArguments + 1> types;
    std::array<void*, maxArguments + 1> values;
    unsigned count = 0;

    void add(ffi_type* type, void* value) {
        types[count] = type;
        values[count] = value;
        ++count;
    }
    bool add(VARTYPE type, VARIANTARG* argument) {
        add(ffiType(type), argument ? &argument->llVal : nullptr);
        return types[count - 1] && values[count - 1];
    }
};

/// libffi widens integers to the size of a register; their low bytes come first.
union Returned {
    ffi_arg widened;
    LONGLONG llVal;
    FLOAT fltVal;
    DOUBLE dblVal;
};

void store(const Returned& returned, VARTYPE type, VARIANT& result) {
    VariantInit(&result);
    result.vt = type == VT_HRESULT ? static_cast<VARTYPE>(VT_ERROR) : type;
    if (type != VT_EMPTY)
        std::memcpy(&result.llVal, &returned, sizeof result.llVal);
}

}  // namespace

HRESULT DispCallFunc(void* object, ULONG_PTR offset, CALLCONV convention, VARTYPE returnType,
                     UINT count, VARTYPE* types, VARIANTARG** arguments, VARIANT* result) {
    const bool knownConvention = convention == CC_STDCALL || convention == CC_CDECL;
    const ULONG_PTR address = functionAddress(object, offset);
    const bool readable = count == 0 || (count <= maxArguments && types && arguments);
    if (!knownConvention || !address || !result || !readable)
        return E_INVALIDARG;

    Call call;
    if (object)
        call.add(&ffi_type_pointer, &object);
    for (UINT i = 0; i < count; ++i) {
        if (!call.add(types[i], arguments[i]))
            return E_INVALIDARG;
    }
    ffi_cif cif;
    ffi_type* ffiResult = ffiReturnType(returnType);
    if (!ffiResult || ffi_prep_cif(&cif, FFI_DEFAULT_ABI, call.count, ffiResult, call.types.data()) != FFI_OK)
        return E_INVALIDARG;

    Returned returned{};
    ffi_call(&cif, reinterpret_cast<void (*)()>(address), &returned, call.values.data());
    store(returned, returnType, *result);
    return S_OK;
}
