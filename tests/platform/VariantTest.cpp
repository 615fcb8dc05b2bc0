#include <limits>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Text.h"

namespace {

/// A variant that is cleared at the end of its scope.
struct Variant : VARIANT {
    Variant() { VariantInit(this); }
    Variant(const Variant& other) : Variant() { VariantCopy(this, const_cast<Variant*>(&other)); }
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(this); }
};

Variant integer(VARTYPE type, LONGLONG value) {
    Variant made;
    made.vt = type;
    made.llVal = value;
    return made;
}

Variant truth(bool value) {
    return integer(VT_BOOL, value ? VARIANT_TRUE : VARIANT_FALSE);
}

Variant single(FLOAT value) {
    Variant made;
    made.vt = VT_R4;
    made.fltVal = value;
    return made;
}

Variant real(DOUBLE value) {
    Variant made;
    made.vt = VT_R8;
    made.dblVal = value;
    return made;
}

Variant text(std::string_view utf8) {
    Variant made;
    made.bstrVal = newBstr(utf8);
    made.vt = VT_BSTR;
    return made;
}

/// The type and the bytes that count in it.
std::string show(const VARIANT& variant) {
    const std::map<VARTYPE, std::size_t> sizes{{VT_I1, 1},   {VT_UI1, 1}, {VT_I2, 2},  {VT_UI2, 2},
                                               {VT_BOOL, 2}, {VT_I4, 4},  {VT_UI4, 4}, {VT_R4, 4},
                                               {VT_I8, 8},   {VT_UI8, 8}, {VT_R8, 8}};
    const std::string type = std::to_string(variant.vt) + ": ";
    if (variant.vt == VT_BSTR)
        return type + toUtf8(Utf16View(variant.bstrVal, SysStringLen(variant.bstrVal)));
    const auto size = sizes.find(variant.vt);
    const std::size_t unused = size == sizes.end() ? 8 : 8 - size->second;
    const ULONGLONG bits = unused == 8 ? 0 : variant.ullVal << (8 * unused) >> (8 * unused);
    return type + std::to_string(bits);
}

struct Conversion {
    Variant from;
    Variant to;
    HRESULT refusal = S_OK;
};

Conversion refused(const Variant& from, VARTYPE type, HRESULT refusal) {
    return {from, integer(type, 0), refusal};
}

void expectConversions(std::vector<Conversion> conversions) {
    for (Conversion& conversion : conversions) {
        SCOPED_TRACE(show(conversion.from) + " to " + show(conversion.to));
        Variant to = text("kept");
        EXPECT_EQ(VariantChangeType(&to, &conversion.from, 0, conversion.to.vt),
                  conversion.refusal);
        EXPECT_EQ(show(to), show(SUCCEEDED(conversion.refusal) ? conversion.to : text("kept")));
    }
}

const LONGLONG int64Min = std::numeric_limits<LONGLONG>::min();

TEST(VariantChangeType, convertsIntegers) {
    expectConversions({
        {integer(VT_I4, 255), integer(VT_UI1, 255)},
        {integer(VT_I1, -128), integer(VT_I8, -128)},
        {integer(VT_UI4, 0xFFFFFFFF), integer(VT_I8, 0xFFFFFFFF)},
        {integer(VT_EMPTY, 0), integer(VT_I4, 0)},
        refused(integer(VT_I4, 256), VT_UI1, DISP_E_OVERFLOW),
        refused(integer(VT_I2, -1), VT_UI4, DISP_E_OVERFLOW),
        refused(integer(VT_I4, -1), VT_UI8, DISP_E_OVERFLOW),
        // of one size: the bits are kept
        {integer(VT_I1, -1), integer(VT_UI1, 255)},
        {integer(VT_UI4, 0x80000000), integer(VT_I4, 0x80000000)},
        {integer(VT_I8, int64Min), integer(VT_UI8, int64Min)},
    });
}

TEST(VariantChangeType, roundsHalvesToTheEvenInteger) {
    expectConversions({
        {real(1.5), integer(VT_I4, 2)},
        {real(2.5), integer(VT_UI8, 2)},
        {real(-2.5), integer(VT_I2, -2)},
        {real(2.51), integer(VT_UI1, 3)},
        {single(254.5F), integer(VT_UI1, 254)},
        {real(-0.5), integer(VT_UI4, 0)},
        refused(real(127.5), VT_I1, DISP_E_OVERFLOW),
        refused(real(2147483648.0), VT_I4, DISP_E_OVERFLOW),
        refused(real(9223372036854775808.0), VT_I8, DISP_E_OVERFLOW),
        refused(real(1e300), VT_R4, DISP_E_OVERFLOW),
    });
}

TEST(VariantChangeType, convertsTruthValues) {
    expectConversions({
        {integer(VT_I4, 2), truth(true)},
        {real(0.25), truth(true)},
        {integer(VT_UI1, 0), truth(false)},
        {truth(true), integer(VT_UI4, 0xFFFFFFFF)},
        {truth(true), real(-1)},
        {truth(true), text("-1")},
        {text("True"), truth(true)},
        {text("fALSE"), truth(false)},
        {text("0"), truth(false)},
        refused(text("on"), VT_BOOL, DISP_E_TYPEMISMATCH),
    });
}

TEST(VariantChangeType, convertsNumbersToTextAndBack) {
    expectConversions({
        {integer(VT_I8, int64Min), text("-9223372036854775808")},
        {real(1e20), text("1E+20")},
        {real(1.0 / 3), text("0.333333333333333")},
        {single(0.1F), text("0.1")},
        {integer(VT_EMPTY, 0), text("")},
        {text(" -12 "), integer(VT_I4, -12)},
        {text("+5"), integer(VT_UI1, 5)},
        {text("2.5"), integer(VT_I4, 2)},
        {text("1e3"), integer(VT_I4, 1000)},
        refused(text("300"), VT_UI1, DISP_E_OVERFLOW),
        refused(text("1e400"), VT_R8, DISP_E_OVERFLOW),
        refused(text("12 bar"), VT_I4, DISP_E_TYPEMISMATCH),
        refused(text("inf"), VT_R8, DISP_E_TYPEMISMATCH),
    });
}

TEST(VariantChangeType, refusesTypesThatHoldNoNumber) {
    expectConversions({
        refused(integer(VT_NULL, 0), VT_I4, DISP_E_TYPEMISMATCH),
        refused(integer(VT_ERROR, 5), VT_I4, DISP_E_TYPEMISMATCH),
        refused(integer(VT_I4, 5), VT_UNKNOWN, DISP_E_TYPEMISMATCH),
    });
    Variant value = text("41.6");
    EXPECT_EQ(VariantChangeType(&value, &value, 0, 99), DISP_E_BADVARTYPE);
    EXPECT_EQ(VariantChangeType(&value, &value, 0, VT_UI1), S_OK);
    EXPECT_EQ(show(value), show(integer(VT_UI1, 42)));
}

struct Counted final : IUnknown {
    LONG references = 1;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
};

TEST(VariantCopy, copiesTextsAndCountsReferences) {
    Variant word = text("valve");
    Variant copy = word;
    EXPECT_EQ(VariantClear(&word), S_OK);
    EXPECT_EQ(word.vt, VT_EMPTY);
    EXPECT_EQ(show(copy), show(text("valve")));

    Counted object;
    Variant holder;
    holder.vt = VT_UNKNOWN;
    holder.punkVal = &object;
    EXPECT_EQ(VariantCopy(&copy, &holder), S_OK);
    EXPECT_EQ(object.references, 2);
    EXPECT_EQ(VariantCopy(&copy, &copy), S_OK);
    EXPECT_EQ(object.references, 2);
    EXPECT_EQ(VariantClear(&copy), S_OK);
    EXPECT_EQ(VariantClear(&holder), S_OK);
    EXPECT_EQ(object.references, 0);

    VARIANT bad;
    VariantInit(&bad);
    bad.vt = 99;
    EXPECT_EQ(VariantClear(&bad), DISP_E_BADVARTYPE);
    EXPECT_EQ(VariantCopy(&copy, &bad), DISP_E_BADVARTYPE);
}

}  // namespace
