#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Text.h"

namespace {

ULONG_PTR address(auto* function) {
    return reinterpret_cast<ULONG_PTR>(function);
}

VARIANT number(VARTYPE type, LONGLONG value) {
    VARIANT made;
    VariantInit(&made);
    made.vt = type;
    made.llVal = value;
    return made;
}

/// A call whose parameters have the types of its arguments, unless told.
struct Call {
    std::vector<VARIANT> arguments;
    std::vector<VARTYPE> types;
    VARIANT result = number(VT_ERROR, -1);

    explicit Call(std::vector<VARIANT> given) : arguments(std::move(given)) {
        for (const VARIANT& argument : arguments)
            types.push_back(argument.vt);
    }

    HRESULT operator()(void* object, ULONG_PTR offset, VARTYPE returnType,
                       CALLCONV convention = CC_STDCALL) {
        std::vector<VARIANTARG*> pointers;
        for (VARIANT& argument : arguments)
            pointers.push_back(&argument);
        return DispCallFunc(object, offset, convention, returnType,
                            static_cast<UINT>(arguments.size()), types.data(), pointers.data(),
                            &result);
    }
};

struct IRecorder : IUnknown {
    virtual ULONG STDMETHODCALLTYPE Note(LONG number, VARIANT_BOOL flag, BSTR text) = 0;

protected:
    ~IRecorder() = default;
};

struct Recorder final : IRecorder {
    std::string noted;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    ULONG STDMETHODCALLTYPE Note(LONG number, VARIANT_BOOL flag, BSTR text) override {
        noted = std::to_string(number) + ' ' + std::to_string(flag) + ' ' +
                toUtf8(Utf16View(text, SysStringLen(text)));
        return 0xFFFFFFF5;
    }
};

DOUBLE STDMETHODCALLTYPE scale(SHORT factor, DOUBLE value, IUnknown* object) {
    return object ? factor * value : 0;
}
SHORT STDMETHODCALLTYPE narrow(LONG value) {
    return static_cast<SHORT>(value);
}

TEST(DispCallFunc, callsAMethodAtItsPlaceInTheVirtualTable) {
    Recorder recorder;
    const ScopedBstr text("valve");
    VARIANT textArgument = number(VT_BSTR, 0);
    textArgument.bstrVal = text.get();
    Call note({number(VT_I4, -7), number(VT_BOOL, VARIANT_TRUE), textArgument});
    EXPECT_EQ(note(static_cast<IRecorder*>(&recorder), 3 * sizeof(void*), VT_UI4, CC_CDECL), S_OK);
    EXPECT_EQ(recorder.noted, "-7 -1 valve");
    EXPECT_EQ(note.result.vt, VT_UI4);
    EXPECT_EQ(note.result.ulVal, 0xFFFFFFF5u);
    EXPECT_EQ(note(static_cast<IRecorder*>(&recorder), 3 * sizeof(void*), VT_EMPTY), S_OK);
    EXPECT_EQ(note.result.vt, VT_EMPTY);
}

TEST(DispCallFunc, callsAPlainFunctionWhenThereIsNoObject) {
    Recorder recorder;
    VARIANT real = number(VT_R8, 0);
    real.dblVal = 2.5;
    VARIANT object = number(VT_UNKNOWN, 0);
    object.punkVal = &recorder;
    Call scaled({number(VT_I2, -3), real, object});
    EXPECT_EQ(scaled(nullptr, address(&scale), VT_R8), S_OK);
    EXPECT_EQ(scaled.result.dblVal, -7.5);

    Call narrowed({number(VT_I4, 0x1FFFE)});
    EXPECT_EQ(narrowed(nullptr, address(&narrow), VT_I2), S_OK);
    EXPECT_EQ(narrowed.result.iVal, -2);
}

TEST(DispCallFunc, passesTheBitsOfAVariantThatHasAnotherType) {
    Call narrowed({number(VT_UNKNOWN, 0x7FFF00001234)});
    narrowed.types = {VT_I4};
    EXPECT_EQ(narrowed(nullptr, address(&narrow), VT_I2), S_OK);
    EXPECT_EQ(narrowed.result.iVal, 0x1234);
}

#ifndef _WIN32  // where these are not all checked
TEST(DispCallFunc, refusesWhatItCannotCall) {
    const ULONG_PTR function = address(&narrow);
    Call good({number(VT_I4, 1)});
    EXPECT_EQ(good(nullptr, 0, VT_I2), E_INVALIDARG);
    EXPECT_EQ(good(nullptr, function, VT_VARIANT), E_INVALIDARG);
    EXPECT_EQ(good(nullptr, function, VT_I2, static_cast<CALLCONV>(2)), E_INVALIDARG);
    Call unknownType({number(VT_VARIANT, 1)});
    EXPECT_EQ(unknownType(nullptr, function, VT_I2), E_INVALIDARG);
    Call tooMany(std::vector<VARIANT>(40, number(VT_I4, 1)));
    EXPECT_EQ(tooMany(nullptr, function, VT_I2), E_INVALIDARG);

    VARTYPE type = VT_I4;
    VARIANTARG* missing = nullptr;
    EXPECT_EQ(DispCallFunc(nullptr, function, CC_STDCALL, VT_I2, 1, &type, &missing, &good.result),
              E_INVALIDARG);
}
#endif

}  // namespace
