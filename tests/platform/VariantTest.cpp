#include <gtest/gtest.h>

#include "platform/NumberVariant.h"
#include "proxy/FakeObject.h"

namespace {

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
