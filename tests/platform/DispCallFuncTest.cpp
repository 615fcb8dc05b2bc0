#include <string>

#include <gtest/gtest.h>

#include "platform/Text.h"

namespace {

VARIANT number(VARTYPE type, LONGLONG value) {
    VARIANT made;
    VariantInit(&made);
    made.vt = type;
    made.llVal = value;
    return made;
}

/// A call with three arguments whose types are those of the parameters.
struct Call {
    VARIANT arguments[3];
    VARIANT result = number(VT_ERROR, -1);

    HRESULT operator()(void* object, ULONG_PTR offset, VARTYPE returnType) {
        VARTYPE types[] = {arguments[0].vt, arguments[1].vt, arguments[2].vt};
        VARIANTARG* pointers[] = {&arguments[0], &arguments[1], &arguments[2]};
        return DispCallFunc(object, offset, CC_STDCALL, returnType, 3, types, pointers, &result);
    }
};

struct Recorder : IUnknown {
    std::string noted;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    virtual ULONG STDMETHODCALLTYPE Note(LONG number, VARIANT_BOOL flag, BSTR text) {
        noted = std::to_string(number) + ' ' + std::to_string(flag) + ' ' +
                toUtf8(Utf16View(text, SysStringLen(text)));
        return 0xFFFFFFF5;
    }

    virtual ~Recorder() = default;
};

DOUBLE STDMETHODCALLTYPE scale(SHORT factor, DOUBLE value, IUnknown* object) {
    return object ? factor * value : 0;
}

TEST(DispCallFunc, callsMethodsAndPlainFunctions) {
    Recorder recorder;
    const ScopedBstr text("valve");
    Call note{{number(VT_I4, -7), number(VT_BOOL, VARIANT_TRUE), number(VT_BSTR, 0)}};
    note.arguments[2].bstrVal = text.get();
    EXPECT_EQ(note(&recorder, 3 * sizeof(void*), VT_UI4), S_OK);
    EXPECT_EQ(recorder.noted, "-7 -1 valve");
    EXPECT_EQ(note.result.ulVal, 0xFFFFFFF5u);

    Call scaled{{number(VT_I2, -3), number(VT_R8, 0), number(VT_UNKNOWN, 0)}};
    scaled.arguments[1].dblVal = 2.5;
    scaled.arguments[2].punkVal = &recorder;
    const auto function = reinterpret_cast<ULONG_PTR>(&scale);
    EXPECT_EQ(scaled(nullptr, function, VT_R8), S_OK);
    EXPECT_EQ(scaled.result.dblVal, -7.5);
#ifndef _WIN32  // where these are not checked
    EXPECT_EQ(scaled(nullptr, 0, VT_R8), E_INVALIDARG);
    scaled.arguments[0].vt = VT_VARIANT;
    EXPECT_EQ(scaled(nullptr, function, VT_R8), E_INVALIDARG);
#endif
}

}  // namespace
