#include <gtest/gtest.h>

#include "platform/NumberVariant.h"
#include "platform/Text.h"
#include "proxy/FakeObject.h"

namespace {

TEST(VariantChangeType, convertsAndRefusesAtTheBorders) {
    /// What a text becomes in one type and then in another, read back as a text.
    const struct {
        const char* from;
        VARTYPE first;
        VARTYPE second;
        HRESULT result;
        const char* to;
    } conversions[] = {
        {"255", VT_I4, VT_UI1, S_OK, "255"},
        {"256", VT_I4, VT_UI1, DISP_E_OVERFLOW, "256"},
        {"-1", VT_I2, VT_UI4, DISP_E_OVERFLOW, "-1"},
        {"-1", VT_I1, VT_UI1, S_OK, "255"},  // of one size: the bits are kept
        {"1.5", VT_R8, VT_I4, S_OK, "2"},
        {"-2.5", VT_R8, VT_I2, S_OK, "-2"},
        {"127.5", VT_R8, VT_I1, DISP_E_OVERFLOW, "127.5"},
        {"2147483648", VT_R8, VT_I4, DISP_E_OVERFLOW, "2147483648"},
        {"1e300", VT_R8, VT_R4, DISP_E_OVERFLOW, "1E+300"},
        {"2", VT_I4, VT_BOOL, S_OK, "-1"},
        {"fALSE", VT_BOOL, VT_I4, S_OK, "0"},
        {"12 bar", VT_BSTR, VT_I4, DISP_E_TYPEMISMATCH, "12 bar"},
        {"1e400", VT_BSTR, VT_R8, DISP_E_OVERFLOW, "1e400"},
        {"5", VT_I4, VT_UNKNOWN, DISP_E_TYPEMISMATCH, "5"},
        {"-9223372036854775808", VT_I8, VT_I8, S_OK, "-9223372036854775808"},
    };
    for (const auto& conversion : conversions) {
        SCOPED_TRACE(conversion.from);
        VARIANT value = number(0, VT_BSTR);
        value.bstrVal = newBstr(conversion.from);
        EXPECT_EQ(VariantChangeType(&value, &value, 0, conversion.first), S_OK);
        EXPECT_EQ(VariantChangeType(&value, &value, 0, conversion.second), conversion.result);
        EXPECT_EQ(VariantChangeType(&value, &value, 0, VT_BSTR), S_OK);
        EXPECT_EQ(toUtf8(Utf16View(value.bstrVal, SysStringLen(value.bstrVal))), conversion.to);
        VariantClear(&value);
    }
}

TEST(VariantCopy, countsReferences) {
    FakeUnknown object;
    VARIANT holder = number(0, VT_UNKNOWN);
    holder.punkVal = &object;
    VARIANT copy = number(0);
    EXPECT_EQ(VariantCopy(&copy, &holder), S_OK);
    EXPECT_EQ(VariantCopy(&copy, &copy), S_OK);
    EXPECT_EQ(object.references(), 2);
    EXPECT_EQ(VariantClear(&copy), S_OK);
    EXPECT_EQ(object.references(), 1);
}

}  // namespace
